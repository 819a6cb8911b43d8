#include "sensorfile/ColumnType.hpp"
#include "sensorfile/NumberText.hpp"
#include "sensorfile/TextRowCodec.hpp"
#include "tests/sensorfile/TestSupport.hpp"
#include "tools/convert/FixedDecimals.hpp"

#include <bit>
#include <cmath>
#include <cstdint>
#include <string>
#include <vector>

#include <rapidcheck.h>
#include <rapidcheck/gtest.h>

// The reference is the long way: the text that a sensor file gets, read back.

namespace SensorFileTool {
namespace {

const std::vector<int> kPrecisions{0, 1, 2, 5, 9, 15, 17, 20, 22, 23, 400};

template <typename T>
bool readsBack(T value, int precision) {
    SensorFile::SensorFileConfig config = SensorFile::configOfTypes(
        {std::is_same_v<T, float> ? SensorFile::kFloat : SensorFile::kDouble});
    config.setDoublePrecision(precision);
    const SensorFile::TextRowCodec codec(config);
    std::vector<char> text(codec.maxValueSize() + 1);
    char* const end = codec.format(0, value, text.data());
    *end = '\t';
    double found = 0;
    std::size_t column = 0;
    codec.parse(text.data(), end + 1, &found, nullptr, column);
    EXPECT_EQ(column, 1U);
    return static_cast<T>(found) == value || std::isnan(value);
}

template <typename T>
void compare(T value) {
    for (const int precision : kPrecisions) {
        ASSERT_EQ(FixedDecimals(precision).keeps(value), readsBack(value, precision))
            << value << " with " << precision << " decimals";
    }
}

TEST(FixedDecimalsTest, NumbersOfFewDecimalsAreKept) {
    const FixedDecimals decimals(5);
    for (const double value : {0.0, -0.0, 0.00001, -1.5, 0.1, 9.80665, 123456789.12345, 1e15})
        EXPECT_TRUE(decimals.keeps(value)) << value;
    for (const double value : {1e-6, 0.1 + 0.2, 1.0 / 3, 123.456789, -5e-324, 4.000005})
        EXPECT_FALSE(decimals.keeps(value)) << value;
    EXPECT_TRUE(decimals.keeps(0.1F));
    EXPECT_FALSE(decimals.keeps(1.0F / 3));
    EXPECT_FALSE(decimals.keeps(1e-30F));
}

TEST(FixedDecimalsTest, WhatIsNoNumberIsKept) {
    for (const double value : {std::nan(""), -std::nan(""), HUGE_VAL, -HUGE_VAL}) {
        EXPECT_TRUE(FixedDecimals(5).keeps(value));
        EXPECT_TRUE(FixedDecimals(5).keeps(static_cast<float>(value)));
    }
}

TEST(FixedDecimalsTest, NeighboursOfDecimalsAreToldFromThem) {
    for (int exponent = -12; exponent <= 17; ++exponent) {
        for (const double digits : {1.0, 1.5, 2.25, 1.00001, 9.99999, 1.2345678901234567}) {
            const double value = digits * std::pow(10.0, exponent);
            for (const double one :
                 {value, std::nextafter(value, 0.0), std::nextafter(value, HUGE_VAL)}) {
                ASSERT_NO_FATAL_FAILURE(compare(one));
                ASSERT_NO_FATAL_FAILURE(compare(-static_cast<float>(one)));
            }
        }
    }
}

TEST(FixedDecimalsTest, TextIsWhatFilesHold) {
    EXPECT_EQ(FixedDecimals(5).textOf(0.123456789), "0.12346");
    EXPECT_EQ(FixedDecimals(5).textOf(2.0), "2");
}

RC_GTEST_PROP(FixedDecimalsTest, AnyDoubleIsToldAsReadingBackTellsIt, (std::uint64_t bits)) {
    compare(std::bit_cast<double>(bits));
}

RC_GTEST_PROP(FixedDecimalsTest, AnyFloatIsToldAsReadingBackTellsIt, (std::uint32_t bits)) {
    compare(std::bit_cast<float>(bits));
}

RC_GTEST_PROP(FixedDecimalsTest, ShortDecimalsAreToldAsReadingBackTellsThem, ()) {
    const auto number = *rc::gen::inRange<std::int64_t>(-1'000'000'000'000, 1'000'000'000'000);
    for (const double unit : {1.0, 1e3, 1e5, 1e6, 1e10}) {
        const double value = static_cast<double>(number) / unit;
        compare(value);
        compare(static_cast<float>(value));
        compare(static_cast<float>(number % 10'000) / static_cast<float>(unit));
    }
}

}  // namespace
}  // namespace SensorFileTool
