#include "tools/common/ErrorText.hpp"

#include <gtest/gtest.h>

namespace SensorFileTool {
namespace {

TEST(ErrorTextTest, AMessageIsTaken) {
    EXPECT_EQ(describeError(Poco::DataException("a.bin: no sensor file")), "a.bin: no sensor file");
}

TEST(ErrorTextTest, AnExceptionWithoutMessageIsTakenByItsName) {
    EXPECT_EQ(describeError(Poco::TimeoutException()), "Timeout");
}

TEST(ErrorTextTest, ErrorsOfFilesTellTheirKindBehindThePath) {
    EXPECT_EQ(describeError(Poco::FileNotFoundException("a.bin")), "a.bin: File not found");
    EXPECT_EQ(describeError(Poco::FileException()), "File access error");
}

TEST(ErrorTextTest, ACauseIsToldBehindTheMessage) {
    const Poco::Exception cause("no data section found");
    EXPECT_EQ(describeError(Poco::DataException("Format error in file : 'a.bin'", cause)),
              "Format error in file : 'a.bin': no data section found");
}

TEST(ErrorTextTest, ACauseWithoutMessageIsTakenByItsName) {
    EXPECT_EQ(describeError(Poco::DataException("a.bin", Poco::OutOfMemoryException())),
              "a.bin: Out of memory");
}

}  // namespace
}  // namespace SensorFileTool
