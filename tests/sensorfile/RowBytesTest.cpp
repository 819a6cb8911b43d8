#include "sensorfile/ColumnType.hpp"
#include "sensorfile/SensorFileWriter.hpp"
#include "tests/sensorfile/TestSupport.hpp"

#include <Poco/Exception.h>
#include <gtest/gtest.h>

namespace SensorFile {
namespace {

class RowBytesTest : public testing::Test {
 protected:
    void open(bool binary) { writer.open(file.path(), config, binary, true); }
    std::string samples(bool binary) {
        writer.close();
        return file.content().substr(openingOf(config, binary).size());
    }

    SensorFileConfig config = configOfTypes({kInt16, kUInt8});
    TemporaryFile file;
    SensorFileWriter writer;
};

TEST_F(RowBytesTest, BinaryRowsStandAsTheyAreBetweenOthers) {
    open(true);
    writer.writeRow(std::vector<double>{1, 2});
    writer.writeRowBytes(bytes("fffe03 7f0004"));
    writer.writeRowBytes("");
    writer.writeRow(std::vector<double>{5, 6});
    EXPECT_EQ(samples(true), bytes("000102 fffe03 7f0004 000506"));
}

TEST_F(RowBytesTest, TextRowsStandAsTheyAreBetweenOthers) {
    open(false);
    writer.writeRow(std::vector<double>{1, 2});
    writer.writeRowBytes("+03\t4\t\n5\t6\t\n");
    writer.writeRow(std::vector<double>{7, 8});
    EXPECT_EQ(samples(false), "1\t2\t\n+03\t4\t\n5\t6\t\n7\t8\t\n");
}

TEST_F(RowBytesTest, ManyBytesGoThrough) {
    for (const bool binary : {true, false}) {
        open(binary);
        std::string rows;
        for (int i = 0; i < 300'000; ++i)
            rows += binary ? bytes("000102") : "1\t2\t\n";
        writer.writeRowBytes(rows);
        EXPECT_EQ(samples(binary), rows);
    }
}

TEST_F(RowBytesTest, BytesThatEndWithinARowAreRefused) {
    open(true);
    EXPECT_THROW(writer.writeRowBytes("1234"), Poco::InvalidArgumentException);
    EXPECT_EQ(samples(true), "");
    open(false);
    EXPECT_THROW(writer.writeRowBytes("1\t2\t"), Poco::InvalidArgumentException);
    EXPECT_EQ(samples(false), "");
}

TEST_F(RowBytesTest, ABegunRowRefusesThem) {
    for (const bool binary : {true, false}) {
        open(binary);
        writer.write(1.0);
        EXPECT_THROW(writer.writeRowBytes(binary ? "123" : "1\t2\t\n"),
                     Poco::IllegalStateException);
        writer.close();
    }
}

TEST_F(RowBytesTest, AClosedWriterRefusesThem) {
    EXPECT_THROW(writer.writeRowBytes("1\n"), Poco::InvalidAccessException);
}

}  // namespace
}  // namespace SensorFile
