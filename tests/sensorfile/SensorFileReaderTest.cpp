#include "sensorfile/SensorFileReader.hpp"
#include "tests/sensorfile/ReaderFixture.hpp"

#include <cmath>
#include <fstream>
#include <limits>
#include <sstream>

#include <Poco/Exception.h>

namespace SensorFile {
namespace {

using Poco::Dynamic::Var;

constexpr double kInfinity = std::numeric_limits<double>::infinity();

// ---- Binary values ----

TEST_F(ReaderTest, BinaryRowsHoldEveryType) {
    openBinary(kAllTypeCodes,
               "41 ff ffff fffe ffffffff fffffffe 3e800000 3fb999999999999a 01 2c d4 0003 fffc"
               "ffffffffffffffff fffffffffffffffa");
    EXPECT_EQ(
        rows(),
        (Rows{{65, -1, 65535, -2, 4294967295.0, -2, 0.25, 0.1, 1, 44, -44, 3, -4, 0x1p64, -6}}));
}

TEST_F(ReaderTest, BinaryBoolsAreOddBytes) {
    openBinary({10}, "03 02 01 00 ff fe");
    EXPECT_EQ(rows(), (Rows{{1}, {0}, {1}, {0}, {1}, {0}}));
    reader.rewind();
    EXPECT_TRUE(reader.readBool());
    EXPECT_FALSE(reader.readBool());
}

TEST_F(ReaderTest, LittleEndianSamplesFollowTheMagic) {
    // A header as a little-endian device writes it: two columns, int16 and double.
    std::string content = bytes(
        "463224af 8912fe56 29bc7890 3480 0101 6c00000000000000 05170a111f04 0000000000006940 0200"
        "02 0e");
    content += "A" + std::string(31, '\0') + bytes("08 09") + "T" + std::string(31, '\0');
    content += bytes("463224af 8912fe56 29bc7890 3580 0001");
    content += bytes("feff 000000000000f03f 0100 0000000000000040");
    file.setContent(content);
    reader.open(file.path(), true);
    EXPECT_FALSE(reader.getConfig().isBigEndian());
    EXPECT_EQ(rows(), (Rows{{-2, 1}, {1, 2}}));
    reader.rewind();
    EXPECT_EQ(reader.readInt16(), -2);
    EXPECT_EQ(reader.readDouble(), 1.0);
    Var value;
    EXPECT_TRUE(reader.readValue(value));
    EXPECT_EQ(value.convert<int>(), 1);
}

TEST_F(ReaderTest, ATornBinaryRowIsNotDelivered) {
    openBinary({14, 14}, "0001 0002 0003 00");
    EXPECT_EQ(rows(), (Rows{{1, 2}}));
}

TEST_F(ReaderTest, TheLastRowDoesNotSetTheEnd) {
    openBinary({14}, "0001");
    nextDouble();
    EXPECT_FALSE(reader.isEof());
    nextDouble();
    EXPECT_TRUE(reader.isEof());
}

TEST_F(ReaderTest, TypedReadsTakeTheirOwnWidth) {
    openBinary({9},
               "01 ff 0203 fffe 04050607 fffffffd 08090a0b0c0d0e0f fffffffffffffffc 3fc00000"
               "c004000000000000 03");
    EXPECT_EQ(reader.readByte(), 1);
    EXPECT_EQ(reader.readSByte(), -1);
    EXPECT_EQ(reader.readUInt16(), 0x0203);
    EXPECT_EQ(reader.readInt16(), -2);
    EXPECT_EQ(reader.readUInt32(), 0x04050607U);
    EXPECT_EQ(reader.readInt32(), -3);
    EXPECT_EQ(reader.readUInt64(), 0x08090a0b0c0d0e0fU);
    EXPECT_EQ(reader.readInt64(), -4);
    EXPECT_EQ(reader.readFloat(), 1.5f);
    EXPECT_EQ(reader.readDouble(), -2.5);
    EXPECT_TRUE(reader.readBool());
    EXPECT_EQ(reader.valueCount(), 11U);
    EXPECT_FALSE(reader.isEof());
    EXPECT_EQ(reader.readUInt16(), 0);
    EXPECT_TRUE(reader.isEof());
    EXPECT_EQ(reader.valueCount(), 12U);
}

TEST_F(ReaderTest, TypedReadsOfAClosedReaderGiveNothing) {
    EXPECT_EQ(reader.readByte(), 0);
    EXPECT_EQ(reader.readDouble(), 0.0);
    EXPECT_EQ(reader.valueCount(), 0U);
    Var value;
    EXPECT_FALSE(reader.readValue(value));
    double number = 0;
    EXPECT_FALSE(reader.readRow({&number, 1}));
    EXPECT_TRUE(reader.isEof());
    reader.rewind();
    EXPECT_EQ(reader.position(), 0);
}

// ---- Text values ----

TEST_F(ReaderTest, TextRowsHoldEveryType) {
    openText(kAllTypeCodes,
             "A\tB\t65535\t-2\t4294967295\t-2\t0.25\t0.1\t1\t44\t-44\t3\t-4\t"
             "18446744073709551615\t-6\t\n");
    EXPECT_EQ(
        rows(),
        (Rows{{65, 66, 65535, -2, 4294967295.0, -2, 0.25, 0.1, 1, 44, -44, 3, -4, 0x1p64, -6}}));
}

TEST_F(ReaderTest, Text8BitNumbersMayBeWider) {
    openText({11, 12}, "4294967295\t-2147483648\t\n");
    EXPECT_EQ(rows(), (Rows{{4294967295.0, -2147483648.0}}));
}

TEST_F(ReaderTest, TextCharactersAreSingle) {
    openText({2, 3}, "AB\tC\t\xff\t\n");
    EXPECT_EQ(rows(), (Rows{{65, 66}, {67, -1}}));
    reader.rewind();
    EXPECT_EQ(reader.readByte(), 'A');
    EXPECT_EQ(reader.readSByte(), 'B');
}

TEST_F(ReaderTest, AnyBlanksSeparateValues) {
    openText({9, 14}, "\r\n +1.5 \v\f 2\r\n3e2\n\n\n4");
    EXPECT_EQ(rows(), (Rows{{1.5, 2}}));
    openText({9, 14}, " 1.5 2 3 4 ");
    EXPECT_EQ(rows(), (Rows{{1.5, 2}, {3, 4}}));
}

TEST_F(ReaderTest, ATornLastValueIsNotDelivered) {
    openText({9, 9}, "1\t2\t\n3\t12.3");
    EXPECT_EQ(rows(), (Rows{{1, 2}}));
    openText({9, 9}, "1\t2\t\n3\t12.3\t");
    EXPECT_EQ(rows(), (Rows{{1, 2}, {3, 12.3}}));
    openText({9, 9}, "1\t2\t\n3");
    EXPECT_EQ(rows(), (Rows{{1, 2}}));
    openText({9}, "1\t\nnan");
    EXPECT_EQ(rows(), (Rows{{1}}));
    openText({9}, "1\t\nna");
    EXPECT_EQ(rows(), (Rows{{1}}));
}

TEST_F(ReaderTest, ALastCharacterIsWholeWithoutItsSeparator) {
    openText({9, 2}, "1\tA\t\n2\tB");
    EXPECT_EQ(rows(), (Rows{{1, 65}, {2, 66}}));
}

TEST_F(ReaderTest, NumbersThatAreNotFiniteReadBack) {
    openText({9, 8}, "nan\tinf\t\n-inf\t-nan\t\n");
    const auto read = rows();
    ASSERT_EQ(read.size(), 2U);
    EXPECT_TRUE(std::isnan(read[0][0]));
    EXPECT_EQ(read[0][1], kInfinity);
    EXPECT_EQ(read[1][0], -kInfinity);
    EXPECT_TRUE(std::isnan(read[1][1]));
    reader.rewind();
    EXPECT_TRUE(std::isnan(reader.readDouble()));
    EXPECT_EQ(reader.readFloat(), std::numeric_limits<float>::infinity());
    EXPECT_EQ(reader.readDouble(), -kInfinity);
    EXPECT_TRUE(std::isnan(reader.readFloat()));
    EXPECT_FALSE(reader.isEof());
}

TEST_F(ReaderTest, OnlyAWholeWordIsNotFinite) {
    // A stream stops at the word, having taken what could begin a number.
    for (const char* text : {"1e+nan\t\n", ".nan\t\n", "-1einf\t\n", "+inf\t\n", "-.inf\t\n"}) {
        openText({9}, text);
        EXPECT_EQ(rows(), (Rows{})) << text;
    }
}

TEST_F(ReaderTest, TextThatIsNoNumberEndsTheLoop) {
    for (const char* text :
         {"x\t2\t\n", "1,5\t2\t\n", "-\t1\t\n", "-x1\t1\t\n", "xyz\t\n", "--inf\t1\t\n", "infinite",
          "1e999\t1\t\n", "1\t32768\t\n", "1\t2.5\t\n"}) {
        openText({9, 14}, text);
        std::vector<double> row(2);
        int count = 0;
        while (!reader.isEof() && count < 10) {
            reader.read(row.data(), 2);
            ++count;
        }
        EXPECT_TRUE(reader.isEof()) << text;
        EXPECT_LE(count, 2) << text;
    }
}

TEST_F(ReaderTest, TextBoolsAreZeroAndOneOnly) {
    openText({10}, "1\t\n0\t\n01\t\n+1\t\n2\t\n1\t\n");
    EXPECT_EQ(rows(), (Rows{{1}, {0}, {1}, {1}}));
    openText({10}, "true\t\n");
    EXPECT_EQ(rows(), (Rows{}));
}

TEST_F(ReaderTest, TextDoesNotDependOnTheProcessLocale) {
    const CommaLocale comma;
    SensorFileReader inner;
    file.setContent(openingOf(configOfTypes({9, 14}), false) + "1.5\t1234\t\n0x\t");
    inner.open(file.path(), false);
    EXPECT_EQ(inner.readDouble(), 1.5);
    EXPECT_EQ(inner.readInt16(), 1234);
    EXPECT_EQ(inner.readDouble(), 0.0);
}

TEST_F(ReaderTest, TypedTextReadsExtract) {
    openText({9}, "A B 1 -2 3 -4 5 -6 1.5 2.5 1 ");
    EXPECT_EQ(reader.readByte(), 'A');
    EXPECT_EQ(reader.readSByte(), 'B');
    EXPECT_EQ(reader.readUInt16(), 1);
    EXPECT_EQ(reader.readInt16(), -2);
    EXPECT_EQ(reader.readUInt32(), 3U);
    EXPECT_EQ(reader.readInt32(), -4);
    EXPECT_EQ(reader.readUInt64(), 5U);
    EXPECT_EQ(reader.readInt64(), -6);
    EXPECT_EQ(reader.readFloat(), 1.5f);
    EXPECT_EQ(reader.readDouble(), 2.5);
    EXPECT_TRUE(reader.readBool());
    EXPECT_FALSE(reader.isEof());
    EXPECT_EQ(reader.readInt32(), 0);
    EXPECT_TRUE(reader.isEof());
}

// ---- Reading into other types ----

TEST_F(ReaderTest, ReadValueHoldsTheColumnsOwnType) {
    const std::pair<int, const std::type_info*> cases[] = {
        {2, &typeid(unsigned char)},  {3, &typeid(signed char)},   {4, &typeid(std::uint16_t)},
        {5, &typeid(std::int16_t)},   {6, &typeid(std::uint32_t)}, {7, &typeid(std::int32_t)},
        {8, &typeid(float)},          {9, &typeid(double)},        {10, &typeid(bool)},
        {13, &typeid(std::uint16_t)}, {14, &typeid(std::int16_t)}, {15, &typeid(Poco::UInt64)},
        {16, &typeid(Poco::Int64)}};
    for (const auto& [code, type] : cases) {
        openBinary({code}, "0000000000000000");
        Var value;
        EXPECT_TRUE(reader.readValue(value));
        EXPECT_EQ(value.type(), *type) << code;
        openText({code}, "1\t\n");
        EXPECT_TRUE(reader.readValue(value));
        EXPECT_EQ(value.type(), *type) << code;
    }
    Var value;
    openBinary({11, 12}, "ffff");
    EXPECT_TRUE(reader.readValue(value));
    EXPECT_EQ(value.type(), typeid(unsigned char));
    EXPECT_TRUE(reader.readValue(value));
    EXPECT_EQ(value.type(), typeid(signed char));
    openText({11, 12}, "44\t-44\t\n");
    EXPECT_TRUE(reader.readValue(value));
    EXPECT_EQ(value.extract<std::uint32_t>(), 44U);
    EXPECT_TRUE(reader.readValue(value));
    EXPECT_EQ(value.extract<std::int32_t>(), -44);
}

TEST_F(ReaderTest, ReadConvertsToTheAskedType) {
    openBinary({14, 9, 5}, "fffe 4004000000000000 0007");
    std::int16_t fromNamedAlike = 0;
    int fromDouble = 0;
    short direct = 0;
    EXPECT_TRUE(reader.read(&fromNamedAlike, 1));
    EXPECT_TRUE(reader.read(&fromDouble, 1));
    EXPECT_TRUE(reader.read(&direct, 1));
    EXPECT_EQ(fromNamedAlike, -2);
    EXPECT_EQ(fromDouble, 2);
    EXPECT_EQ(direct, 7);
}

TEST_F(ReaderTest, ReadTruncatesNumbersThatFitTheAskedTypeThen) {
    openText({9, 9, 8, 9}, "-32768.9\t-0.5\t-0.5\t-9223372036854775808\t\n");
    short least = 0;
    unsigned fromDouble = 1;
    unsigned fromFloat = 1;
    std::int64_t large = 0;
    EXPECT_TRUE(reader.read(&least, 1));
    EXPECT_TRUE(reader.read(&fromDouble, 1));
    EXPECT_TRUE(reader.read(&fromFloat, 1));
    EXPECT_TRUE(reader.read(&large, 1));
    EXPECT_EQ(least, -32768);
    EXPECT_EQ(fromDouble, 0U);
    EXPECT_EQ(fromFloat, 0U);
    EXPECT_EQ(large, std::numeric_limits<std::int64_t>::min());
}

TEST_F(ReaderTest, ReadRefusesNumbersThatNoIntegerHolds) {
    openText({9, 8, 9, 9}, "nan\tinf\t9223372036854775808\t18446744073709551616\t\n");
    int number = 0;
    std::int64_t large = 0;
    std::uint64_t larger = 0;
    EXPECT_THROW(reader.read(&number, 1), Poco::RangeException);
    EXPECT_THROW(reader.read(&number, 1), Poco::RangeException);
    EXPECT_THROW(reader.read(&large, 1), Poco::RangeException);
    EXPECT_THROW(reader.read(&larger, 1), Poco::RangeException);
    EXPECT_EQ(reader.valueCount(), 4U);
    EXPECT_FALSE(reader.isEof());
}

TEST_F(ReaderTest, ReadTakesEveryTypeDirectly) {
    openBinary({2, 3, 4, 6, 7, 8, 10, 15, 16},
               "ff ff ffff ffffffff ffffffff 3fc00000 03 ffffffffffffffff ffffffffffffffff");
    const auto next = [this]<typename T>(T value) {
        EXPECT_TRUE(reader.read(&value, 1));
        return value;
    };
    EXPECT_EQ(next(static_cast<unsigned char>(0)), 255);
    EXPECT_EQ(next(static_cast<signed char>(0)), -1);
    EXPECT_EQ(next(std::uint16_t{0}), 65535);
    EXPECT_EQ(next(std::uint32_t{0}), 4294967295U);
    EXPECT_EQ(next(std::int32_t{0}), -1);
    EXPECT_EQ(next(0.0f), 1.5f);
    EXPECT_TRUE(next(false));
    EXPECT_EQ(next(std::uint64_t{0}), ~std::uint64_t{0});
    EXPECT_EQ(next(std::int64_t{0}), -1);
}

TEST_F(ReaderTest, AValueThatDoesNotFitTheAskedTypeIsRefusedAndPassed) {
    openBinary({9, 9}, "40f86a0000000000 4000000000000000");
    short value = 0;
    EXPECT_THROW(reader.read(&value, 1), Poco::RangeException);
    EXPECT_TRUE(reader.read(&value, 1));
    EXPECT_EQ(value, 2);
}

TEST_F(ReaderTest, ReadCrossesRowsFromAnyColumn) {
    for (const bool binary : {false, true}) {
        open(configOfTypes({14, 14, 14}), binary,
             binary ? bytes("0001 0002 0003 0004 0005 0006 0007 0008 0009 000a 000b 000c")
                    : "1\t2\t3\t\n4\t5\t6\t\n7\t8\t9\t\n10\t11\t12\t\n");
        std::vector<double> values(11);
        EXPECT_TRUE(reader.read(values.data(), 1));
        EXPECT_TRUE(reader.read(values.data() + 1, 10));
        EXPECT_THAT(values, testing::ElementsAre(1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11));
        EXPECT_EQ(reader.valueCount(), 11U);
        EXPECT_TRUE(reader.read(values.data(), 5));
        EXPECT_EQ(values[0], 12);
        EXPECT_TRUE(reader.isEof());
        EXPECT_EQ(reader.valueCount(), 16U);
    }
}

TEST_F(ReaderTest, RowsTypedReadsAndPositionGoTogether) {
    openBinary({14, 14}, "0001 0002 0003 0004 0005 0006");
    const std::int64_t start = reader.position();
    std::vector<double> row(2);
    EXPECT_TRUE(reader.readRow(row));
    EXPECT_EQ(reader.position(), start + 4);
    EXPECT_EQ(reader.readInt16(), 3);
    EXPECT_THROW(reader.readRow(row), Poco::IllegalStateException);
    EXPECT_EQ(reader.readInt16(), 4);
    EXPECT_EQ(reader.position(), start + 8);
    EXPECT_TRUE(reader.readRow(row));
    EXPECT_THAT(row, testing::ElementsAre(5, 6));
    EXPECT_EQ(reader.position(), start + 12);
}

TEST_F(ReaderTest, RowsOfAnotherSizeAreRefused) {
    openBinary({14, 14}, "0001 0002");
    std::vector<double> row(3);
    EXPECT_THROW(reader.readRow(row), Poco::InvalidArgumentException);
    EXPECT_THROW(reader.readRow({row.data(), 1}), Poco::InvalidArgumentException);
}

TEST_F(ReaderTest, WithoutColumnsThereIsNothingToRead) {
    for (const bool binary : {false, true}) {
        open(configOfTypes({}), binary, "abc");
        double value = 0;
        Var var;
        EXPECT_FALSE(reader.readRow({}));
        EXPECT_FALSE(reader.readValue(var));
        EXPECT_TRUE(reader.isEof());
        EXPECT_TRUE(reader.read(&value, 1));
        EXPECT_EQ(value, 0.0);
        EXPECT_EQ(reader.readByte(), 0);
        EXPECT_EQ(reader.valueCount(), 0U);
    }
}

// ---- Going back and closing ----

TEST_F(ReaderTest, RewindGoesBackToTheFirstSample) {
    for (const bool binary : {false, true}) {
        open(configOfTypes({14, 14}), binary,
             binary ? bytes("0001 0002 0003 0004") : "1\t2\t\n3\t4\t\n");
        std::vector<double> row(2);
        EXPECT_TRUE(reader.readRow(row));
        reader.rewind();
        EXPECT_EQ(reader.valueCount(), 2U);
        EXPECT_TRUE(reader.readRow(row));
        EXPECT_THAT(row, testing::ElementsAre(1, 2));
        EXPECT_TRUE(reader.readRow(row));
        EXPECT_FALSE(reader.readRow(row));
        EXPECT_TRUE(reader.isEof());
        reader.rewind();
        EXPECT_FALSE(reader.isEof());
        EXPECT_TRUE(reader.readRow(row));
        EXPECT_THAT(row, testing::ElementsAre(1, 2));
    }
}

TEST_F(ReaderTest, LongFilesReadBackAcrossBlocksAndAfterRewind) {
    std::string binarySamples;
    std::string textSamples;
    constexpr int kRows = 90'000;
    for (int i = 0; i < kRows; ++i) {
        const auto number = static_cast<std::uint32_t>(i);
        for (const int shift : {24, 16, 8, 0})
            binarySamples.push_back(static_cast<char>(number >> shift));
        binarySamples.push_back(static_cast<char>(i % 100));
        textSamples += std::to_string(i) + "\t" + std::to_string(i % 100) + "\t\n";
    }
    for (const bool binary : {false, true}) {
        open(configOfTypes({6, 11}), binary, binary ? binarySamples : textSamples);
        for (int pass = 0; pass < 2; ++pass) {
            std::vector<double> row(2);
            int count = 0;
            while (reader.readRow(row)) {
                ASSERT_EQ(row[0], count);
                ASSERT_EQ(row[1], count % 100);
                ++count;
            }
            EXPECT_EQ(count, kRows);
            reader.rewind();
        }
    }
}

TEST_F(ReaderTest, RowsWrittenAfterTheEndAreSeenAfterRewind) {
    openBinary({14}, "0001");
    EXPECT_EQ(rows().size(), 1U);
    std::ofstream(file.path(), std::ios::binary | std::ios::app) << bytes("0002");
    reader.rewind();
    EXPECT_EQ(rows().size(), 2U);
}

TEST_F(ReaderTest, CloseForgetsTheFile) {
    openBinary({14}, "0001");
    nextDouble();
    reader.close();
    expectClosed();
    EXPECT_TRUE(reader.isBinary());
    reader.close();
}

}  // namespace
}  // namespace SensorFile
