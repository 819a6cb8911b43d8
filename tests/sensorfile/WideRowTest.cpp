#include "sensorfile/ColumnType.hpp"
#include "sensorfile/SensorFileReader.hpp"
#include "sensorfile/SensorFileWriter.hpp"
#include "tests/sensorfile/TestSupport.hpp"

#include <bit>
#include <filesystem>

#include <Poco/Exception.h>
#include <gtest/gtest.h>
#include <rapidcheck.h>
#include <rapidcheck/gtest.h>

// Rows with the exact bits of 64-bit integers against values one by one.

namespace SensorFile {
namespace {

struct WideRow {
    std::vector<double> values;
    std::vector<std::uint64_t> bits;
};

bool isWide(int type) {
    return type == kUInt64 || type == kInt64;
}

/// Small whole numbers, which fit any column, but any bits in wide ones.
WideRow anyRow(const std::vector<int>& types) {
    WideRow row;
    for (const int type : types) {
        row.bits.push_back(*rc::gen::arbitrary<std::uint64_t>());
        row.values.push_back(isWide(type) ? -7.0 : *rc::gen::inRange(33, 120));
    }
    return row;
}

std::string opened(const SensorFileConfig& config, bool binary, const TemporaryFile& file) {
    return file.content().substr(openingOf(config, binary).size());
}

std::string byRows(const SensorFileConfig& config, bool binary, const std::vector<WideRow>& rows) {
    const TemporaryFile file;
    SensorFileWriter writer;
    writer.open(file.path(), config, binary, true);
    for (const WideRow& row : rows)
        writer.writeRow(row.values, row.bits);
    writer.close();
    return opened(config, binary, file);
}

std::string byValues(const SensorFileConfig& config, bool binary,
                     const std::vector<WideRow>& rows) {
    const TemporaryFile file;
    SensorFileWriter writer;
    writer.open(file.path(), config, binary, true);
    for (const WideRow& row : rows)
        for (std::size_t i = 0; i < row.values.size(); ++i) {
            const int type = config.getColumn(i).getTypeCode();
            if (type == kUInt64)
                writer.write(row.bits[i]);
            else if (type == kInt64)
                writer.write(std::bit_cast<std::int64_t>(row.bits[i]));
            else
                writer.write(row.values[i]);
        }
    writer.close();
    return opened(config, binary, file);
}

rc::Gen<std::vector<int>> anyColumns() {
    return rc::gen::mapcat(rc::gen::inRange<std::size_t>(1, 24), [](std::size_t count) {
        return rc::gen::container<std::vector<int>>(
            count, rc::gen::oneOf(rc::gen::elementOf(kAllTypeCodes),
                                  rc::gen::element<int>(kUInt64, kInt64)));
    });
}

RC_GTEST_PROP(WideRowTest, RowsAreWrittenAsTheirValuesAre, ()) {
    const auto types = *anyColumns();
    const auto config = configOfTypes(types);
    std::vector<WideRow> rows(*rc::gen::inRange<std::size_t>(0, 5));
    for (WideRow& row : rows)
        row = anyRow(types);
    for (const bool binary : {true, false})
        RC_ASSERT(byRows(config, binary, rows) == byValues(config, binary, rows));
}

void expectRead(const SensorFileConfig& config, bool binary, const std::string& samples,
                const std::vector<WideRow>& rows) {
    const TemporaryFile file(openingOf(config, binary) + samples);
    SensorFileReader reader;
    reader.open(file.path(), binary);
    WideRow read = {std::vector<double>(config.getColumnCount()),
                    std::vector<std::uint64_t>(config.getColumnCount(), 1)};
    for (const WideRow& row : rows) {
        RC_ASSERT(reader.readRow(read.values, read.bits));
        for (std::size_t i = 0; i < row.bits.size(); ++i) {
            const int type = config.getColumn(i).getTypeCode();
            RC_ASSERT(read.bits[i] == (isWide(type) ? row.bits[i] : 1));
            if (type == kInt64)
                RC_ASSERT(read.values[i] ==
                          static_cast<double>(std::bit_cast<std::int64_t>(row.bits[i])));
            else if (type == kUInt64)
                RC_ASSERT(read.values[i] == static_cast<double>(row.bits[i]));
            else if (type != kBool)
                RC_ASSERT(read.values[i] == row.values[i]);
        }
    }
    RC_ASSERT(!reader.readRow(read.values, read.bits));
}

RC_GTEST_PROP(WideRowTest, RowsAreReadAsTheyWereWritten, ()) {
    const auto types = *anyColumns();
    const auto config = configOfTypes(types);
    std::vector<WideRow> rows(*rc::gen::inRange<std::size_t>(0, 5));
    for (WideRow& row : rows)
        row = anyRow(types);
    for (const bool binary : {true, false})
        expectRead(config, binary, byRows(config, binary, rows), rows);
}

TEST(WideRowTest, LittleEndianFilesAreRead) {
    // One column of type uint64, all numbers little-endian.
    const TemporaryFile file(
        bytes("463224af 8912fe56 29bc7890 3480 0101 4a00000000000000 05170a111f04"
              "0000000000006940 0100 080f 55") +
        std::string(31, '\0') + bytes("463224af 8912fe56 29bc7890 3580 0001") +
        bytes("0100000000002000"));
    SensorFileReader reader;
    reader.open(file.path(), true);
    double value = 0.0;
    std::uint64_t bits = 0;
    ASSERT_TRUE(reader.readRow({&value, 1}, {&bits, 1}));
    EXPECT_EQ(bits, 0x20000000000001U);
}

TEST(WideRowTest, RowsAcrossBlocksAreRead) {
    const auto config = configOfTypes({kUInt8, kUInt64});
    constexpr std::uint64_t kRows = 70'000;  // more than two blocks of 256 KiB
    for (const bool binary : {true, false}) {
        const TemporaryFile file;
        SensorFileWriter writer;
        writer.open(file.path(), config, binary, true);
        writer.setTextRowsWaiting(true);
        for (std::uint64_t i = 0; i < kRows; ++i)
            writer.writeRow(std::vector<double>{33, 0}, std::vector<std::uint64_t>{0, ~i});
        writer.close();
        SensorFileReader reader;
        reader.open(file.path(), binary);
        std::vector<double> row(2);
        std::vector<std::uint64_t> bits(2);
        for (std::uint64_t i = 0; i < kRows; ++i) {
            ASSERT_TRUE(reader.readRow(row, bits));
            ASSERT_EQ(bits[1], ~i);
        }
        EXPECT_FALSE(reader.readRow(row, bits));
    }
}

TEST(WideRowTest, BitsNeedARoomPerColumn) {
    const auto config = configOfTypes({kInt16, kUInt64});
    const TemporaryFile file;
    SensorFileWriter writer;
    writer.open(file.path(), config, true, true);
    EXPECT_THROW(writer.writeRow(std::vector<double>(2), std::vector<std::uint64_t>(1)),
                 Poco::InvalidArgumentException);
    writer.close();
    SensorFileReader reader;
    reader.open(file.path(), true);
    std::vector<double> row(2);
    std::vector<std::uint64_t> bits(1);
    EXPECT_THROW((void)reader.readRow(row, bits), Poco::InvalidArgumentException);
}

TEST(WideRowTest, TextRowsGoOutOneByOneUnlessTheyMayWait) {
    const auto config = configOfTypes({kInt16});
    for (const bool areWaiting : {false, true}) {
        const TemporaryFile file;
        SensorFileWriter writer;
        writer.open(file.path(), config, false, true);
        writer.setTextRowsWaiting(areWaiting);
        const std::size_t opening = file.content().size();
        writer.writeRow(std::vector<double>{7});
        EXPECT_EQ(file.content().size() - opening, areWaiting ? 0U : 3U);
        writer.close();
        EXPECT_EQ(file.content().substr(opening), "7\t\n");
        writer.open(file.path(), config, false, true);
        writer.writeRow(std::vector<double>{7});
        EXPECT_EQ(file.content().size() - opening, 3U);
    }
}

}  // namespace
}  // namespace SensorFile
