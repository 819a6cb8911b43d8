#include "sensorfile/ColumnType.hpp"
#include "tests/sensorfile/TestSupport.hpp"
#include "tools/diff/ValueDifference.hpp"

#include <bit>
#include <cmath>
#include <cstdint>
#include <limits>
#include <string>

#include <rapidcheck/gtest.h>

namespace SensorFileTool {

namespace {

constexpr double kNan = std::numeric_limits<double>::quiet_NaN();
constexpr double kInfinity = std::numeric_limits<double>::infinity();

Row wideRow(int type, std::uint64_t bits) {
    Row row(SensorFile::configOfTypes({type}));
    row.setBits(0, bits);
    return row;
}

Row doubleRow(double value) {
    Row row(SensorFile::configOfTypes({SensorFile::kDouble}));
    row.setValue(0, value);
    return row;
}

std::optional<double> between(const Row& a, const Row& b, const Tolerance& tolerance = {}) {
    const auto difference = differenceBetween(a, 0, b, 0, tolerance);
    EXPECT_EQ(difference, differenceBetween(b, 0, a, 0, tolerance));
    return difference;
}

TEST(ValueDifference, EqualNumbersDoNotDiffer) {
    EXPECT_EQ(differenceBetween(0.1, 0.1, {}), std::nullopt);
    EXPECT_EQ(differenceBetween(0.0, -0.0, {}), std::nullopt);
    EXPECT_EQ(differenceBetween(kNan, -kNan, {}), std::nullopt);
    EXPECT_EQ(differenceBetween(kInfinity, kInfinity, {}), std::nullopt);
}

TEST(ValueDifference, SmallestDifferenceIsSeenWithoutTolerance) {
    EXPECT_EQ(differenceBetween(1.0, std::nextafter(1.0, 2.0), {}), std::ldexp(1.0, -52));
}

TEST(ValueDifference, WhatIsNoNumberDiffersInfinitelyWhateverTheTolerance) {
    const Tolerance all{kInfinity, kInfinity};
    EXPECT_EQ(differenceBetween(kNan, 1.0, all), kInfinity);
    EXPECT_EQ(differenceBetween(1.0, kInfinity, all), kInfinity);
    EXPECT_EQ(differenceBetween(-kInfinity, kInfinity, all), kInfinity);
    EXPECT_EQ(differenceBetween(kInfinity, kNan, all), kInfinity);
}

TEST(ValueDifference, LimitsOfTolerancesCountAsEqual) {
    EXPECT_EQ(differenceBetween(1.0, 1.5, {.absolute = 0.5}), std::nullopt);
    EXPECT_EQ(differenceBetween(1.0, 1.75, {.absolute = 0.5}), 0.75);
    EXPECT_EQ(differenceBetween(-8.0, -4.0, {.relative = 0.5}), std::nullopt);
    EXPECT_EQ(differenceBetween(-8.0, -3.5, {.relative = 0.5}), 4.5);
    EXPECT_EQ(differenceBetween(8.0, 4.0, {.absolute = 1.0, .relative = 0.5}), std::nullopt);
    EXPECT_EQ(differenceBetween(1.0, 2.0, {.absolute = 1.0, .relative = 0.1}), std::nullopt);
}

TEST(ValueDifference, IntegersOf64BitsAreExact) {
    constexpr std::uint64_t kLast = std::numeric_limits<std::uint64_t>::max();
    const auto a = wideRow(SensorFile::kUInt64, kLast);
    EXPECT_EQ(between(a, a), std::nullopt);
    EXPECT_EQ(between(a, wideRow(SensorFile::kUInt64, kLast - 1)), 1.0);
    EXPECT_EQ(between(a, wideRow(SensorFile::kUInt64, kLast - 1), {.absolute = 1.0}), std::nullopt);
    EXPECT_EQ(between(a, wideRow(SensorFile::kUInt64, kLast - 1), {.absolute = 0.5}), 1.0);
    EXPECT_EQ(between(a, wideRow(SensorFile::kInt64, kLast)), 18446744073709551616.0);
    EXPECT_EQ(between(wideRow(SensorFile::kInt64, kLast), doubleRow(-1.0)), std::nullopt);
    EXPECT_EQ(between(wideRow(SensorFile::kInt64, kLast - 1), wideRow(SensorFile::kInt64, kLast)),
              1.0);
}

TEST(ValueDifference, IntegerIsNoRoundedDouble) {
    constexpr std::uint64_t kOdd = (std::uint64_t{1} << 53) + 1;
    EXPECT_EQ(between(wideRow(SensorFile::kUInt64, kOdd), doubleRow(9007199254740992.0)), 1.0);
    EXPECT_EQ(between(wideRow(SensorFile::kInt64, 3), doubleRow(3.25)), 0.25);
    EXPECT_EQ(between(wideRow(SensorFile::kInt64, 3), doubleRow(kNan)), kInfinity);
    EXPECT_EQ(between(wideRow(SensorFile::kUInt64, 3), doubleRow(1e300)), 1e300);
}

TEST(ValueDifference, IntegerLimitsAreNotRounded) {
    // The distance of 2^53 + 1 would round down to the limit.
    const auto zero = wideRow(SensorFile::kUInt64, 0);
    const auto odd = wideRow(SensorFile::kUInt64, (std::uint64_t{1} << 53) + 1);
    EXPECT_NE(between(zero, odd, {.absolute = 9007199254740992.0}), std::nullopt);
    EXPECT_EQ(between(zero, odd, {.absolute = 9007199254740994.0}), std::nullopt);
}

RC_GTEST_PROP(ValueDifference, SmallIntegersDifferAsDoublesDo, ()) {
    const auto a = *rc::gen::arbitrary<std::int32_t>();
    const auto b = *rc::gen::arbitrary<std::int32_t>();
    const Tolerance tolerance{static_cast<double>(*rc::gen::inRange(0, 100)),
                              *rc::gen::inRange(0, 100) / 64.0};
    const auto rowA = wideRow(SensorFile::kInt64, std::bit_cast<std::uint64_t>(std::int64_t{a}));
    const auto rowB = wideRow(SensorFile::kInt64, std::bit_cast<std::uint64_t>(std::int64_t{b}));
    RC_ASSERT(between(rowA, rowB, tolerance) == differenceBetween(a, b, tolerance));
    RC_ASSERT(between(rowA, doubleRow(b), tolerance) == differenceBetween(a, b, tolerance));
}

}  // namespace

}  // namespace SensorFileTool
