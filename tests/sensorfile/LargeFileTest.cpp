#include "sensorfile/ColumnType.hpp"
#include "sensorfile/InputBlock.hpp"
#include "sensorfile/SensorFileReader.hpp"
#include "sensorfile/SensorFileWriter.hpp"
#include "tests/sensorfile/ReaderFixture.hpp"

#include <cstdint>
#include <filesystem>
#include <fstream>
#include <istream>
#include <vector>

// Files beyond 4 GiB and recordings of more than 2^32 values, in seconds: the files have a hole
// where a long recording has its rows.

namespace SensorFile {
namespace {

constexpr std::uint64_t kFourGiB = std::uint64_t{1} << 32;
// Rows of 11 bytes, which divide no power of two.
const std::vector<int> kTypes = {kUInt32, kInt16, kUInt8, kFloat};
constexpr std::uint64_t kRowSize = 11;

std::string bytesOfRow(std::uint32_t number) {
    std::string row;
    for (int shift = 24; shift >= 0; shift -= 8)
        row.push_back(static_cast<char>(number >> shift & 0xffU));
    return row + bytes("fff9 2a 3f400000");
}

std::vector<double> valuesOfRow(std::uint32_t number) {
    return {static_cast<double>(number), -7.0, 42.0, 0.75};
}

void putAt(const std::string& path, std::uint64_t offset, const std::string& content) {
    std::fstream file(path, std::ios::in | std::ios::out | std::ios::binary);
    file.seekp(static_cast<std::streamoff>(offset));
    file.write(content.data(), static_cast<std::streamsize>(content.size()));
    ASSERT_TRUE(file.flush().good());
}

class LargeFileTest : public ReaderTest {
 protected:
    /// A recording with ten rows on both sides of each of these, and zeros elsewhere.
    void openWithRowsAt(const std::vector<std::uint64_t>& numbers) {
        const std::string opening = openingOf(configOfTypes(kTypes), true);
        file.setContent(opening);
        for (const std::uint64_t number : numbers) {
            std::string rows;
            for (std::uint64_t row = number - 10; row < number + 10; ++row)
                rows += bytesOfRow(static_cast<std::uint32_t>(row));
            putAt(file.path(), opening.size() + (number - 10) * kRowSize, rows);
        }
        start_ = static_cast<std::int64_t>(opening.size());
        reader.open(file.path(), true);
    }
    void expectRow(std::uint64_t number) {
        std::vector<double> row(kTypes.size());
        ASSERT_TRUE(reader.readRow(row)) << number;
        EXPECT_EQ(row, valuesOfRow(static_cast<std::uint32_t>(number)));
    }
    [[nodiscard]] std::int64_t offsetOf(std::uint64_t number) const {
        return start_ + static_cast<std::int64_t>(number * kRowSize);
    }

    std::int64_t start_ = 0;
};

TEST_F(LargeFileTest, RowsOnBothSidesOfEachBorderAreFound) {
    // 2 GiB, 4 GiB, 2^32 values, 2^32 - 10 rows.
    const std::vector<std::uint64_t> borders = {kFourGiB / 2 / kRowSize, kFourGiB / kRowSize,
                                                kFourGiB / kTypes.size(), kFourGiB - 10};
    openWithRowsAt(borders);
    ASSERT_GT(std::filesystem::file_size(file.path()), 10 * kFourGiB);
    for (const std::uint64_t border : borders) {
        for (std::uint64_t number = border - 10; number < border + 10; ++number) {
            reader.seekRow(number);
            EXPECT_EQ(reader.position(), offsetOf(number));
            expectRow(number);
        }
        reader.seekRow(border - 10);
        for (std::uint64_t number = border - 10; number < border + 10; ++number)
            expectRow(number);
        EXPECT_EQ(reader.position(), offsetOf(border + 10));
    }
    std::vector<double> row(kTypes.size());
    EXPECT_FALSE(reader.readRow(row));
    EXPECT_TRUE(reader.isEof());
}

TEST_F(LargeFileTest, ValuesOneByOneAreThoseOfTheRow) {
    const std::uint64_t number = kFourGiB / kRowSize;
    openWithRowsAt({number});
    reader.seekRow(number);
    for (const double expected : valuesOfRow(static_cast<std::uint32_t>(number)))
        EXPECT_EQ(nextDouble(), expected);
    EXPECT_EQ(reader.readUInt32(), number + 1);
}

TEST_F(LargeFileTest, RewindGoesBackToTheFirstRow) {
    openWithRowsAt({10, kFourGiB / kRowSize});
    reader.seekRow(kFourGiB / kRowSize);
    expectRow(kFourGiB / kRowSize);
    reader.rewind();
    expectRow(0);
    EXPECT_EQ(reader.position(), offsetOf(1));
}

TEST_F(LargeFileTest, ARowThatTheFarEndCutsIsNotThere) {
    const std::uint64_t number = kFourGiB / kRowSize;
    openWithRowsAt({number});
    reader.close();
    std::filesystem::resize_file(file.path(),
                                 static_cast<std::uint64_t>(offsetOf(number + 10)) - 1);
    reader.open(file.path(), true);
    reader.seekRow(number + 8);
    expectRow(number + 8);
    std::vector<double> row(kTypes.size());
    EXPECT_FALSE(reader.readRow(row));
}

TEST_F(LargeFileTest, TextFarBehindIsReadWithTheRightOffsets) {
    file.setContent("");
    const std::uint64_t place = kFourGiB + 123;
    putAt(file.path(), place, "12.5\t-3\t\n");
    InputBlock block;
    block.open(file.path());
    block.seek(static_cast<std::int64_t>(place));
    std::istream stream(&block);
    double first = 0;
    int second = 0;
    stream >> first >> second;
    EXPECT_EQ(first, 12.5);
    EXPECT_EQ(second, -3);
    EXPECT_EQ(block.position(), static_cast<std::int64_t>(place) + 7);
}

/// The count of values alone, without the values.
class CountTest : public SensorFileIo, public testing::TestWithParam<std::uint32_t> {
 protected:
    CountTest() : SensorFileIo(/*isWriteMode=*/false) {
        std::vector<int> types(GetParam(), kUInt8);
        config_ = configOfTypes(types);
        startSamples();
    }
};

TEST_P(CountTest, TheColumnDoesNotShiftBeyondTwoToThe32Values) {
    std::uint64_t values = 0;
    while (values < kFourGiB + 10 * std::uint64_t{GetParam()}) {
        for (int i = 0; i < 1000; ++i)
            countRow();
        values += std::uint64_t{1000} * GetParam();
        ASSERT_EQ(valueCount() % GetParam(), 0U) << values;
    }
    // What a writer asks when its header comes later.
    startSamples();
    EXPECT_EQ(column_, 0U);
    for (std::uint32_t i = 1; i < GetParam(); ++i)
        EXPECT_FALSE(countValue());
    EXPECT_TRUE(countValue());
    EXPECT_EQ(valueCount() % GetParam(), 0U);
}

INSTANTIATE_TEST_SUITE_P(Columns, CountTest, testing::Values(11U, 250U, 65533U));

}  // namespace
}  // namespace SensorFile
