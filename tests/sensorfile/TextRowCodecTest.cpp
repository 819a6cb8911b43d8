#include "sensorfile/TextRowCodec.hpp"
#include "tests/sensorfile/TestSupport.hpp"

#include <array>
#include <cstdint>
#include <limits>
#include <string>
#include <vector>

#include <Poco/Exception.h>

namespace SensorFile {
namespace {

std::string formatOne(int typeCode, double value) {
    const TextRowCodec codec(configOfTypes({typeCode}));
    std::vector<char> text(codec.maxValueSize() + 1);
    return {text.data(), codec.formatValues(0, {&value, 1}, nullptr, text.data())};
}

/// The value at the text's start; nothing if it was left to the stream.
std::vector<double> parseOne(int typeCode, const std::string& text) {
    const TextRowCodec codec(configOfTypes({typeCode}));
    std::array<double, 1> row{};
    std::size_t column = 0;
    codec.parse(text.data(), text.data() + text.size(), row.data(), nullptr, column);
    return column == 1 ? std::vector<double>{row[0]} : std::vector<double>{};
}

TEST(TextRowCodecTest, EverySixteenBitNumberIsWrittenAndReadBack) {
    const TextRowCodec codec(configOfTypes({kInt16, kUInt16}));
    std::vector<char> room(2 * (codec.maxValueSize() + 1));
    for (int number = 0; number <= 65535; ++number) {
        const std::array<double, 2> values{double(number - 32768), double(number)};
        const std::string text(room.data(), codec.formatValues(0, values, nullptr, room.data()));
        ASSERT_EQ(text, std::to_string(number - 32768) + "\t" + std::to_string(number) + "\t");
        for (const char* const behind : {"", "7\t", "123456789\t"}) {
            const std::string line = text + behind;
            std::array<double, 2> row{};
            std::size_t column = 0;
            const char* const end =
                codec.parse(line.data(), line.data() + line.size(), row.data(), nullptr, column);
            ASSERT_EQ(column, 2U);
            ASSERT_EQ(end, line.data() + text.size() - 1);
            ASSERT_EQ(row, values);
        }
    }
}

TEST(TextRowCodecTest, IntegersOfAllLengthsAreWrittenAndReadBack) {
    for (std::int64_t number = 1; number < 10'000'000'000; number *= 10) {
        for (const std::int64_t one : {number - 1, number, number + 1, -number, -number + 1}) {
            const std::string text = std::to_string(one) + "\t";
            const auto value = static_cast<double>(one);
            if (one >= 0 && one <= std::numeric_limits<std::uint32_t>::max()) {
                EXPECT_EQ(formatOne(kUInt32, value), text);
                EXPECT_EQ(parseOne(kUInt32, text + "12345678\t"), std::vector{value});
            }
            if (std::abs(one) <= std::numeric_limits<std::int32_t>::max()) {
                EXPECT_EQ(formatOne(kInt32, value), text);
                EXPECT_EQ(parseOne(kInt32, text + "12345678\t"), std::vector{value});
            }
        }
    }
}

TEST(TextRowCodecTest, NumbersAreTruncatedWithinTheirRange) {
    EXPECT_EQ(formatOne(kUInt16, 65535.9), "65535\t");
    EXPECT_EQ(formatOne(kUInt16, -0.9), "0\t");
    EXPECT_EQ(formatOne(kInt16, -32768.9), "-32768\t");
    EXPECT_EQ(formatOne(kUInt8, 300.7), "44\t");
    EXPECT_THROW(formatOne(kUInt16, 65536), Poco::RangeException);
    EXPECT_THROW(formatOne(kInt16, std::numeric_limits<double>::quiet_NaN()), Poco::RangeException);
}

TEST(TextRowCodecTest, WhatIsNoShortIntegerIsLeftToTheOtherWay) {
    const std::string behind = "\t1234567\t";
    EXPECT_EQ(parseOne(kInt16, "+12" + behind), std::vector{12.0});
    EXPECT_EQ(parseOne(kInt16, "-12 " + behind), std::vector{-12.0});
    EXPECT_EQ(parseOne(kInt16, "0000000012" + behind), std::vector{12.0});
    EXPECT_EQ(parseOne(kUInt16, "-1" + behind), std::vector{65535.0});
    EXPECT_EQ(parseOne(kUInt8, "300" + behind), std::vector{300.0});
    EXPECT_EQ(parseOne(kInt16, "32768" + behind), std::vector<double>{});
    EXPECT_EQ(parseOne(kInt16, "12.5" + behind), std::vector<double>{});
    EXPECT_EQ(parseOne(kInt16, "-" + behind), std::vector<double>{});
    EXPECT_EQ(parseOne(kInt16, "1:" + behind), std::vector<double>{});
    EXPECT_EQ(parseOne(kInt16, "12"), std::vector<double>{});
}

}  // namespace
}  // namespace SensorFile
