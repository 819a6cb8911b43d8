#include "tools/common/DateText.hpp"
#include "tools/common/EncodingOption.hpp"
#include "tools/common/Share.hpp"
#include "tools/common/UsageException.hpp"

#include <gtest/gtest.h>

namespace SensorFileTool {
namespace {

TEST(ShareTest, IsANumberOrPercents) {
    EXPECT_EQ(parseShare("--lose", "0"), 0.0);
    EXPECT_EQ(parseShare("--lose", "0.25"), 0.25);
    EXPECT_EQ(parseShare("--lose", "25%"), 0.25);
    EXPECT_EQ(parseShare("--lose", "1e-3"), 0.001);
    EXPECT_EQ(parseShare("--lose", "100%"), 1.0);
}

TEST(ShareTest, OtherTextIsWrongUsage) {
    for (const char* text :
         {"", "%", "a", "-0.1", "1.01", "101%", "5%%", "5% ", " 5", "nan", "0,1"})
        EXPECT_THROW((void)parseShare("--lose", text), UsageException) << text;
    try {
        (void)parseShare("--lose", "2");
    } catch (const UsageException& error) {
        EXPECT_EQ(error.message(), "--lose: '2' is no share such as 0.001 or 0.1%");
    }
}

TEST(DateTextTest, IsUtcWithOrWithoutZ) {
    const Poco::DateTime date(2017, 5, 23, 10, 4, 31);
    for (const char* text : {"2017-05-23T10:04:31Z", "2017-05-23T10:04:31", "2017-05-23 10:04:31"})
        EXPECT_EQ(parseDate("--creation-time", text), date);
    EXPECT_EQ(parseDate("--creation-time", "2000-02-29T00:00:00Z").month(), 2);
    EXPECT_EQ(parseDate("--creation-time", "2255-12-31T23:59:59Z").year(), 2255);
}

TEST(DateTextTest, OtherTextIsWrongUsage) {
    for (const char* text :
         {"", "Z", "2017-05-23", "2017-02-29T00:00:00Z", "2017-13-01T00:00:00Z",
          "2017-05-23T24:00:00Z", "2017-05-23T10:60:31Z", "17-05-23T10:04:31Z",
          "2017-05-23T10:04:31+01", "2017-5-23T10:04:31Z", "2017/05/23T10:04:31Z",
          "2017-05-23T10:04:31ZZ", "1999-12-31T23:59:59Z", "2256-01-01T00:00:00Z"})
        EXPECT_THROW((void)parseDate("--creation-time", text), UsageException) << text;
}

TEST(EncodingOptionTest, NamesThatEndWithTxtAskForText) {
    const EncodingOption option;
    EXPECT_FALSE(option.isBinary("a.txt"));
    for (const char* name : {"a.bin", "a", "-", "a.txt.bin", "txt"})
        EXPECT_TRUE(option.isBinary(name)) << name;
}

}  // namespace
}  // namespace SensorFileTool
