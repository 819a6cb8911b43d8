// The bytes and the text of single values in columns of each type.

#include "tests/sensorfile/WriterFixture.hpp"

#include <cmath>
#include <limits>
#include <sstream>
#include <string>
#include <vector>

#include <Poco/BinaryWriter.h>
#include <Poco/Exception.h>

namespace SensorFile {
namespace {

using WriterValueTest = WriterTest;

constexpr double kInfinity = std::numeric_limits<double>::infinity();

// ---- Values in binary ----

TEST_F(WriterValueTest, BinaryValuesHaveTheWidthOfTheirColumn) {
    const std::pair<int, const char*> cases[] = {{2, "02"},
                                                 {3, "02"},
                                                 {4, "0002"},
                                                 {5, "0002"},
                                                 {6, "00000002"},
                                                 {7, "00000002"},
                                                 {8, "40200000"},
                                                 {9, "4004000000000000"},
                                                 {10, "01"},
                                                 {11, "02"},
                                                 {12, "02"},
                                                 {13, "0002"},
                                                 {14, "0002"},
                                                 {15, "0000000000000002"},
                                                 {16, "0000000000000002"},
                                                 {17, "00000002"},
                                                 {18, "00000002"}};
    for (const auto& [code, expected] : cases)
        EXPECT_EQ(bytesOf(code, 2.5), expected) << code;
}

TEST_F(WriterValueTest, BinaryIntegersTruncateAndKeepTheLowBits) {
    EXPECT_EQ(bytesOf(11, 300.7), "2c");
    EXPECT_EQ(bytesOf(14, -1.9), "ffff");
    EXPECT_EQ(bytesOf(13, -0.9), "0000");
    EXPECT_EQ(bytesOf(14, 70000.0), "1170");
    EXPECT_EQ(bytesOf(6, 4294967297.0), "00000001");
    EXPECT_EQ(bytesOf(6, -1.0), "ffffffff");
    EXPECT_EQ(bytesOf(7, -2147483648.5), "80000000");
    EXPECT_EQ(bytesOf(15, 0x1p63), "8000000000000000");
    EXPECT_EQ(bytesOf(15, -1.0), "ffffffffffffffff");
    EXPECT_EQ(bytesOf(16, -0x1p63), "8000000000000000");
}

TEST_F(WriterValueTest, BinaryIntegersOfWhatIsNoNumberAreZero) {
    for (const int code : {2, 5, 6, 7, 11, 14}) {
        for (const double value : {std::nan(""), kInfinity, -kInfinity, 1e300}) {
            EXPECT_EQ(bytesOf(code, value).find_first_not_of('0'), std::string::npos) << code;
        }
    }
}

TEST_F(WriterValueTest, BinaryBoolIsNotEqualToZero) {
    EXPECT_EQ(bytesOf(10, 0.0), "00");
    EXPECT_EQ(bytesOf(10, -0.0), "00");
    EXPECT_EQ(bytesOf(10, 0.1), "01");
    EXPECT_EQ(bytesOf(10, 1e-310), "01");
    EXPECT_EQ(bytesOf(10, std::nan("")), "01");
    EXPECT_EQ(bytesOf(10, 256), "01");
}

TEST_F(WriterValueTest, LargeValuesKeepTheirLowBitsInRowsOfShortsAndAByte) {
    for (const std::size_t shorts : {1, 2, 3, 10, 16, 17}) {
        std::vector<int> columns(shorts, 14);
        columns.push_back(11);
        for (std::size_t large = 0; large <= columns.size(); ++large) {
            std::vector<double> row(columns.size(), -2.0);
            if (large < row.size()) row[large] = 0x1p40 + 0x1234;
            std::string expected;
            for (std::size_t i = 0; i < row.size(); ++i) {
                const std::string bytes = i == large ? "1234" : "fffe";
                expected += i == shorts ? bytes.substr(2) : bytes;
            }
            openBinary(columns);
            writer.writeRow(row);
            EXPECT_EQ(hexOf(closedSamples()), expected) << shorts << " shorts, large: " << large;
        }
    }
}

TEST_F(WriterValueTest, Binary64BitIntegersDoNotPassThroughDoubles) {
    EXPECT_EQ(bytesOf(15, ~std::uint64_t{0}), "ffffffffffffffff");
    EXPECT_EQ(bytesOf(16, (std::int64_t{1} << 53) + 1), "0020000000000001");
    EXPECT_EQ(bytesOf(16, std::numeric_limits<std::int64_t>::min()), "8000000000000000");
}

TEST_F(WriterValueTest, BinaryFloatsRound) {
    EXPECT_EQ(bytesOf(8, 0.1), "3dcccccd");
    EXPECT_EQ(bytesOf(8, 0.1f), "3dcccccd");
    EXPECT_EQ(bytesOf(8, 16777217), "4b800000");
    EXPECT_EQ(bytesOf(8, 1e300), "7f800000");
    EXPECT_EQ(bytesOf(9, 0.1), "3fb999999999999a");
    EXPECT_EQ(bytesOf(9, -kInfinity), "fff0000000000000");
}

TEST_F(WriterValueTest, EveryNumericTypeCanBeWritten) {
    openBinary({9});
    writer.write(static_cast<unsigned char>(200));
    writer.write(static_cast<signed char>(-3));
    writer.write(std::uint16_t{65535});
    writer.write(short{-4});
    writer.write(5U);
    writer.write(-6L);
    writer.write(true);
    writer.write(2.5f);
    writer.write(2.5L);
    std::ostringstream expected;
    Poco::BinaryWriter reference(expected, Poco::BinaryWriter::BIG_ENDIAN_BYTE_ORDER);
    for (const double value : {200.0, -3.0, 65535.0, -4.0, 5.0, -6.0, 1.0, 2.5, 2.5}) {
        reference << value;
    }
    EXPECT_EQ(hexOf(closedSamples()), hexOf(expected.str()));
}

TEST_F(WriterValueTest, BinaryValuesFollowEachOtherWithoutSeparators) {
    openBinary({14, 11});
    for (int i = 1; i <= 5; ++i)
        writer.write(i);
    EXPECT_EQ(writer.valueCount(), 5U);
    EXPECT_EQ(hexOf(closedSamples()),
              "0001"
              "02"
              "0003"
              "04"
              "0005");
}

// ---- Values in text ----

TEST_F(WriterValueTest, TextRowsEndWithTabAndLineEnd) {
    openText({14, 14, 14});
    for (int i = 1; i <= 6; ++i)
        writer.write(i);
    EXPECT_EQ(samples(), "1\t2\t3\t\n4\t5\t6\t\n");
    writer.write(7);
    EXPECT_EQ(closedSamples(), "1\t2\t3\t\n4\t5\t6\t\n7\t");
}

TEST_F(WriterValueTest, TextOfADoubleAndAnInt16Column) {
    openText({9, 14});
    writer.write(0.005);
    writer.write(-12.0);
    EXPECT_EQ(closedSamples(), "0.005\t-12\t\n");
}

TEST_F(WriterValueTest, TextDoublesLoseTrailingZeros) {
    EXPECT_EQ(textOf(9, 3.0), "3");
    EXPECT_EQ(textOf(9, 0.1), "0.1");
    EXPECT_EQ(textOf(9, 1e-7), "0");
    EXPECT_EQ(textOf(9, -1e-7), "-0");
    EXPECT_EQ(textOf(9, 100.0), "100");
    EXPECT_EQ(textOf(9, 1e22), "10000000000000000000000");
    EXPECT_EQ(textOf(8, 0.1), "0.1");
    EXPECT_EQ(textOf(9, 1.5f), "1.5");
    EXPECT_EQ(textOf(9, 7), "7");
    EXPECT_EQ(textOf(9, std::nan("")), "nan");
    EXPECT_EQ(textOf(9, -kInfinity), "-inf");
    EXPECT_EQ(textOf(8, kInfinity), "inf");
}

TEST_F(WriterValueTest, TextPrecisionIsTheConfigurations) {
    for (const auto& [precision, expected] :
         {std::pair{0, "3"},
          {1, "3.1"},
          {9, "3.141592654"},
          {-1, "3.141593"},
          {25, "3.1415926535897931159979635"},
          {2'000'000'000, "3.141592653589793115997963468544185161590576171875"}}) {
        auto config = configOfTypes({9, 8});
        config.setDoublePrecision(precision);
        open(config, false);
        writer.write(3.14159265358979323846);
        writer.write(2);
        EXPECT_EQ(writer.formatValue(0, 3.14159265358979323846, false), expected);
        EXPECT_EQ(closedSamples(), std::string(expected) + "\t2\t\n") << precision;
    }
}

TEST_F(WriterValueTest, PrecisionZeroTrimsNoIntegerDigits) {
    auto config = configOfTypes({9});
    config.setDoublePrecision(0);
    open(config, false);
    writer.write(100.0);
    EXPECT_EQ(closedSamples(), "100\t\n");
}

TEST_F(WriterValueTest, ALargePrecisionKeepsLargeNumbersWhole) {
    auto config = configOfTypes({9});
    config.setDoublePrecision(1074);
    open(config, false);
    writer.write(std::numeric_limits<double>::max());
    writer.write(std::numeric_limits<double>::denorm_min());
    std::ostringstream expected;
    expected.precision(1074);
    expected << std::fixed << std::numeric_limits<double>::denorm_min() << "\t\n";
    const std::string text = closedSamples();
    EXPECT_EQ(text.substr(text.find('\n') + 1), expected.str());
    EXPECT_EQ(text.find('\n'), 310U);
}

TEST_F(WriterValueTest, TextIntegersAreDecimalNumbersAndCharactersThemselves) {
    EXPECT_EQ(textOf(2, 65.9), "A");
    EXPECT_EQ(textOf(3, 'b'), "b");
    EXPECT_EQ(textOf(4, 65535), "65535");
    EXPECT_EQ(textOf(5, -32768.0), "-32768");
    EXPECT_EQ(textOf(14, 32767.9), "32767");
    EXPECT_EQ(textOf(6, 4294967295U), "4294967295");
    EXPECT_EQ(textOf(7, -7.9), "-7");
    EXPECT_EQ(textOf(15, ~std::uint64_t{0}), "18446744073709551615");
    EXPECT_EQ(textOf(16, -0x1p63), "-9223372036854775808");
    EXPECT_EQ(textOf(10, 0.5), "1");
    EXPECT_EQ(textOf(10, 0), "0");
    EXPECT_EQ(textOf(10, std::nan("")), "1");
}

TEST_F(WriterValueTest, Text8BitNumbersWrap) {
    EXPECT_EQ(textOf(11, 300.7), "44");
    EXPECT_EQ(textOf(11, -1.0), "255");
    EXPECT_EQ(textOf(11, -257), "255");
    EXPECT_EQ(textOf(11, std::nan("")), "0");
    EXPECT_EQ(textOf(12, 200.0), "-56");
    EXPECT_EQ(textOf(12, -128.9), "-128");
    EXPECT_EQ(textOf(12, std::uint64_t{255}), "-1");
}

TEST_F(WriterValueTest, ARefusedTextValueTakesItsRowBack) {
    openText({9, 14, 11});
    for (const double value : {1.0, 2.0, 3.0, 4.0})
        writer.write(value);
    EXPECT_THROW(writer.write(40000.0), Poco::RangeException);
    EXPECT_EQ(writer.refusedRowCount(), 1U);
    EXPECT_EQ(writer.valueCount(), 3U);
    for (const double value : {7.0, 8.0, 9.0})
        writer.write(value);
    EXPECT_EQ(closedSamples(), "1\t2\t3\t\n7\t8\t9\t\n");
}

TEST_F(WriterValueTest, ALateRefusedValueTakesItsLongTextRowBack) {
    openText(std::vector<int>(20, 14));
    std::vector<double> row(20, 7.0);
    row[18] = 40000.0;
    EXPECT_THROW(writer.writeRow(row), Poco::RangeException);
    EXPECT_EQ(writer.valueCount(), 0U);
    row[18] = -8.0;
    writer.writeRow(row);
    std::string line;
    for (const double value : row)
        line += value == 7.0 ? "7\t" : "-8\t";
    EXPECT_EQ(closedSamples(), line + "\n");
}

TEST_F(WriterValueTest, TextValuesThatFitNoColumnAreRefused) {
    const std::pair<int, double> cases[] = {
        {2, 256.0},    {2, -1.0},    {3, 128.0},        {4, 65536.0}, {5, 32768.0},
        {5, -32769.0}, {6, -1.0},    {7, 2147483648.0}, {8, 1e39},    {14, std::nan("")},
        {15, -1.0},    {15, 0x1p64}, {16, 0x1p63}};
    for (const auto& [code, value] : cases) {
        openText({code});
        EXPECT_THROW(writer.write(value), Poco::RangeException) << code << " " << value;
        EXPECT_EQ(closedSamples(), "");
    }
}

TEST_F(WriterValueTest, TextDoesNotDependOnTheProcessLocale) {
    const CommaLocale comma;
    EXPECT_EQ(textOf(9, 1234567.25), "1234567.25");
    EXPECT_EQ(textOf(7, 1234567), "1234567");
}

}  // namespace
}  // namespace SensorFile
