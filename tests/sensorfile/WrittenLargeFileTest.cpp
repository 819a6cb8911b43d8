#include "sensorfile/ColumnType.hpp"
#include "sensorfile/SensorFileReader.hpp"
#include "sensorfile/SensorFileWriter.hpp"
#include "tests/sensorfile/TestSupport.hpp"
#include "tests/support/FileSizeLimit.hpp"

#include <array>
#include <cstdint>
#include <filesystem>

#include <Poco/Exception.h>

// Files of more than 4 GiB and more than 2^32 values, really written and read: minutes, and 5 GB of
// disk in the folder for temporary files.

namespace SensorFile {
namespace {

constexpr std::uint64_t kFourGiB = std::uint64_t{1} << 32;

/// Rows of 11 bytes, which divide no power of two; no two within 2^24 are equal.
constexpr std::size_t kColumns = 11;
using Row = std::array<double, kColumns>;

Row rowAt(std::uint64_t number) {
    Row row;
    for (std::size_t i = 0; i < kColumns; ++i)
        row[i] = static_cast<double>((number >> (i % 3 * 8) & 0xffU) ^ i);
    return row;
}

class WrittenLargeFileTest : public testing::TestWithParam<bool> {
 protected:
    WrittenLargeFileTest() { writer.open(file.path(), config, GetParam(), true); }

    void writeRows(std::uint64_t first, std::uint64_t end) {
        for (std::uint64_t number = first; number < end; ++number)
            writer.writeRow(rowAt(number));
    }
    void expectRows(SensorFileReader& reader, std::uint64_t first, std::uint64_t end) {
        Row row;
        for (std::uint64_t number = first; number < end; ++number) {
            ASSERT_TRUE(reader.readRow(row)) << number;
            ASSERT_EQ(row, rowAt(number)) << number;
        }
    }

    const SensorFileConfig config = configOfTypes(std::vector<int>(kColumns, kUInt8));
    const std::uint64_t openingSize = openingOf(config, GetParam()).size();
    // Text rows are about three times as long.
    const std::uint64_t rowCount = (kFourGiB + 100'000'000) / (GetParam() ? kColumns : 36);
    TemporaryFile file;
    SensorFileWriter writer;
};

TEST_P(WrittenLargeFileTest, EveryRowIsReadAsItWasWritten) {
    writer.setTextRowsWaiting(true);
    writeRows(0, rowCount);
    EXPECT_EQ(writer.valueCount() % kColumns, 0U);
    // Value by value the columns are still the right ones.
    for (const double value : rowAt(rowCount))
        writer.write(value);
    writer.close();
    ASSERT_GT(std::filesystem::file_size(file.path()), kFourGiB);

    SensorFileReader reader;
    reader.open(file.path(), GetParam());
    expectRows(reader, 0, rowCount + 1);
    EXPECT_EQ(reader.valueCount() % kColumns, 0U);
    // Of a text row, the last tab and the line end are read with the next one.
    EXPECT_EQ(static_cast<std::uint64_t>(reader.position()) + (GetParam() ? 0 : 2),
              std::filesystem::file_size(file.path()));
    Row row;
    EXPECT_FALSE(reader.readRow(row));
    reader.rewind();
    expectRows(reader, 0, 1000);
    if (!GetParam()) return;
    reader.seekRow(rowCount - 5);
    expectRows(reader, rowCount - 5, rowCount + 1);
}

TEST_P(WrittenLargeFileTest, AFullDiskBeyond4GiBLeavesWholeRows) {
    std::uint64_t number = 0;
    {
        writer.setTextRowsWaiting(true);
        const Support::FileSizeLimit limit(static_cast<rlim_t>(kFourGiB + 12'345));
        try {
            for (;; ++number)
                writer.writeRow(rowAt(number));
        } catch (const Poco::FileException&) {
            EXPECT_EQ(std::filesystem::file_size(file.path()), kFourGiB + 12'345);
        }
        EXPECT_THROW(writer.close(), Poco::FileException);
    }
    const std::uint64_t size = std::filesystem::file_size(file.path());
    EXPECT_LT(kFourGiB + 12'345 - size, 100U);
    SensorFileReader reader;
    reader.open(file.path(), GetParam());
    Row row;
    std::uint64_t rows = 0;
    for (; reader.readRow(row); ++rows)
        ASSERT_EQ(row, rowAt(rows)) << rows;
    EXPECT_GT(rows, number - 100'000);
    if (GetParam()) {
        EXPECT_EQ(openingSize + rows * kColumns, size);
    }
}

INSTANTIATE_TEST_SUITE_P(Encodings, WrittenLargeFileTest, testing::Bool(),
                         [](const auto& variant) { return variant.param ? "Binary" : "Text"; });

}  // namespace
}  // namespace SensorFile
