#include "filters/common/Numbers.hpp"

#include <cmath>
#include <cstdint>
#include <limits>

#include <gtest/gtest.h>

namespace {

constexpr double kInfinity = std::numeric_limits<double>::infinity();
constexpr double kNan = std::numeric_limits<double>::quiet_NaN();
constexpr double kTwo63 = 9223372036854775808.0;

}  // namespace

TEST(NumbersTest, TruncatesTowardZero) {
    EXPECT_EQ(Filters::truncateToInt64(1.9), 1);
    EXPECT_EQ(Filters::truncateToInt64(-1.9), -1);
    EXPECT_EQ(Filters::truncateToInt32(2.7), 2);
    EXPECT_EQ(Filters::truncateToInt32(-2.7), -2);
}

TEST(NumbersTest, HasNo64BitNumberOutsideOf64Bits) {
    EXPECT_EQ(Filters::truncateToInt64(-kTwo63), std::numeric_limits<std::int64_t>::min());
    EXPECT_EQ(Filters::truncateToInt64(kTwo63), std::nullopt);
    EXPECT_EQ(Filters::truncateToInt64(std::nextafter(kTwo63, 0.0)), 9223372036854774784);
    EXPECT_EQ(Filters::truncateToInt64(std::nextafter(-kTwo63, -kInfinity)), std::nullopt);
    EXPECT_EQ(Filters::truncateToInt64(kNan), std::nullopt);
    EXPECT_EQ(Filters::truncateToInt64(kInfinity), std::nullopt);
    EXPECT_EQ(Filters::truncateToInt64(-kInfinity), std::nullopt);
}

TEST(NumbersTest, TakesTheNearest32BitNumber) {
    EXPECT_EQ(Filters::truncateToInt32(2147483647.0), 2147483647);
    EXPECT_EQ(Filters::truncateToInt32(2147483647.9), 2147483647);
    EXPECT_EQ(Filters::truncateToInt32(1e300), 2147483647);
    EXPECT_EQ(Filters::truncateToInt32(-2147483648.0), std::numeric_limits<std::int32_t>::min());
    EXPECT_EQ(Filters::truncateToInt32(-kInfinity), std::numeric_limits<std::int32_t>::min());
    EXPECT_EQ(Filters::truncateToInt32(kNan), 0);
}

TEST(NumbersTest, ClampsMilliseconds) {
    EXPECT_EQ(Filters::clampMilliseconds(12.9), 12);
    EXPECT_EQ(Filters::clampMilliseconds(0.9), 0);
    EXPECT_EQ(Filters::clampMilliseconds(-5.0), 0);
    EXPECT_EQ(Filters::clampMilliseconds(kNan), 0);
    EXPECT_EQ(Filters::clampMilliseconds(kInfinity), 2147483647);
}
