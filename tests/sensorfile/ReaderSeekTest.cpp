#include "tests/sensorfile/ReaderFixture.hpp"

#include <cstdint>
#include <limits>
#include <random>

#include <rapidcheck/gtest.h>

namespace SensorFile {
namespace {

// Rows of three columns: 7 bytes, which divide no block.
const std::vector<int> kTypes = {kInt16, kUInt8, kInt32};
// Several of the reader's blocks.
constexpr std::uint64_t kRowCount = 100000;

/// Row i holds -i mod 2^15, i mod 256 and i.
std::string manyRows() {
    std::string samples;
    for (std::uint32_t i = 0; i < kRowCount; ++i) {
        const std::uint32_t low = (0U - i % 0x8000U) & 0xffffU;
        for (const std::uint32_t byte : {low >> 8, low, i, i >> 24, i >> 16, i >> 8, i})
            samples.push_back(static_cast<char>(byte & 0xffU));
    }
    return samples;
}

std::vector<double> rowAt(std::uint64_t i) {
    return {-static_cast<double>(i % 0x8000U), static_cast<double>(i % 256U),
            static_cast<double>(i)};
}

/// A recording of one int16 column with little-endian samples.
std::string littleEndianFile(std::string_view samples) {
    return bytes(
               "463224af 8912fe56 29bc7890 3480 0101 4a00000000000000 05170a111f04"
               "0000000000006940 0100 0201 41434358") +
           std::string(28, '\0') + bytes("463224af 8912fe56 29bc7890 3580 0001") + bytes(samples);
}

class ReaderSeekTest : public ReaderTest {
 protected:
    std::vector<double> nextRow() {
        std::vector<double> row(reader.getConfig().getColumnCount());
        EXPECT_TRUE(reader.readRow(row));
        return row;
    }
    void expectEnd() {
        std::vector<double> row(reader.getConfig().getColumnCount());
        EXPECT_FALSE(reader.readRow(row));
        EXPECT_TRUE(reader.isEof());
    }
};

TEST_F(ReaderSeekTest, RowsInAnyOrderAreThoseOfReadingThrough) {
    open(configOfTypes(kTypes), true, manyRows());
    for (std::uint64_t i = 0; i < kRowCount; ++i)
        ASSERT_EQ(nextRow(), rowAt(i));
    expectEnd();
    std::mt19937 random(20170523);
    std::uniform_int_distribution<std::uint64_t> any(0, kRowCount - 1);
    for (int i = 0; i < 2000; ++i) {
        const std::uint64_t row = any(random);
        reader.seekRow(row);
        ASSERT_EQ(nextRow(), rowAt(row));
        if (row + 1 < kRowCount) {
            ASSERT_EQ(nextRow(), rowAt(row + 1));
        }
    }
}

RC_GTEST_FIXTURE_PROP(ReaderSeekTest, AnyWalkFindsTheSameValues, ()) {
    const auto values =
        *rc::gen::container<std::vector<std::uint8_t>>(rc::gen::arbitrary<std::uint8_t>());
    open(configOfTypes({kUInt8}), true, std::string(values.begin(), values.end()));
    const auto walk = *rc::gen::container<std::vector<std::uint64_t>>(
        rc::gen::inRange<std::uint64_t>(0, values.size() + 2));
    for (const std::uint64_t target : walk) {
        reader.seekRow(target);
        std::vector<double> row(1);
        RC_ASSERT(reader.readRow(row) == (target < values.size()));
        if (target >= values.size()) continue;
        RC_ASSERT(row[0] == static_cast<double>(values[static_cast<std::size_t>(target)]));
    }
}

TEST_F(ReaderSeekTest, LittleEndianRowsAreFound) {
    file.setContent(littleEndianFile("0100 feff 0003"));
    reader.open(file.path(), true);
    reader.seekRow(2);
    EXPECT_EQ(nextRow(), std::vector{768.0});
    reader.seekRow(1);
    EXPECT_EQ(nextRow(), std::vector{-2.0});
    EXPECT_EQ(nextRow(), std::vector{768.0});
    expectEnd();
}

TEST_F(ReaderSeekTest, RowsBeyondTheEndAreNotThere) {
    openBinary({kUInt8, kUInt8}, "0102 0304 05");
    for (const std::uint64_t row : {2U, 3U, 1000000U}) {
        reader.seekRow(row);
        EXPECT_FALSE(reader.isEof());
        expectEnd();
    }
    reader.seekRow(1);
    EXPECT_FALSE(reader.isEof());
    EXPECT_EQ(nextRow(), (std::vector{3.0, 4.0}));
}

TEST_F(ReaderSeekTest, RowsThatNoFileCanHoldAreRefusedAndThePlaceIsKept) {
    openBinary({kUInt8, kUInt8}, "0102 0304");
    nextRow();
    EXPECT_THROW_MESSAGE(reader.seekRow(std::numeric_limits<std::uint64_t>::max()),
                         Poco::RangeException, "No file has so many rows!");
    EXPECT_THROW_MESSAGE(reader.seekRow(std::uint64_t{1} << 62), Poco::RangeException,
                         "No file has so many rows!");
    EXPECT_EQ(nextRow(), (std::vector{3.0, 4.0}));
}

TEST_F(ReaderSeekTest, ARefusalDoesNotLeaveTheBegunRow) {
    openBinary({kUInt8, kUInt8, kUInt8}, "010203 040506");
    nextDouble();
    EXPECT_THROW(reader.seekRow(std::uint64_t{1} << 63), Poco::RangeException);
    EXPECT_EQ(nextDouble(), 2.0);
    EXPECT_EQ(nextDouble(), 3.0);
    EXPECT_EQ(nextRow(), (std::vector{4.0, 5.0, 6.0}));
}

TEST_F(ReaderSeekTest, PositionIsTheOffsetOfTheRow) {
    openBinary({kUInt8, kInt16}, "010002 030004 050006");
    const std::int64_t start = reader.position();
    reader.seekRow(2);
    EXPECT_EQ(reader.position(), start + 6);
    reader.seekRow(0);
    EXPECT_EQ(reader.position(), start);
}

TEST_F(ReaderSeekTest, ABegunRowIsLeft) {
    openBinary({kUInt8, kUInt8, kUInt8}, "010203 040506");
    EXPECT_EQ(nextDouble(), 1.0);
    EXPECT_EQ(nextDouble(), 2.0);
    reader.seekRow(1);
    EXPECT_EQ(nextRow(), (std::vector{4.0, 5.0, 6.0}));
    reader.seekRow(0);
    EXPECT_EQ(nextDouble(), 1.0);
}

TEST_F(ReaderSeekTest, RowsOfTextAreRefusedAndReadingGoesOn) {
    openText({kInt16}, "1\t\n2\t\n");
    nextRow();
    EXPECT_THROW_MESSAGE(reader.seekRow(0), Poco::IllegalStateException,
                         "Rows of text files cannot be looked up!");
    EXPECT_EQ(nextRow(), std::vector{2.0});
}

TEST_F(ReaderSeekTest, WithoutColumnsThereAreNoRows) {
    open(configOfTypes({}), true, "");
    reader.seekRow(3);
    std::vector<double> row;
    EXPECT_FALSE(reader.readRow(row));
}

TEST_F(ReaderSeekTest, AClosedReaderDoesNothing) {
    reader.seekRow(5);
    EXPECT_FALSE(reader.isOpen());
    openText({kInt16}, "1\t\n");
    reader.close();
    reader.seekRow(std::numeric_limits<std::uint64_t>::max());
    EXPECT_TRUE(reader.isEof());
}

}  // namespace
}  // namespace SensorFile
