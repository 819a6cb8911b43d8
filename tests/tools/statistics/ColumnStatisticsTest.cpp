#include "sensorfile/ColumnType.hpp"
#include "tests/sensorfile/TestSupport.hpp"
#include "tools/statistics/ColumnStatistics.hpp"

#include <bit>
#include <cmath>
#include <cstdint>
#include <limits>
#include <vector>

#include <gtest/gtest.h>

namespace SensorFileTool {

namespace {

constexpr double kNan = std::numeric_limits<double>::quiet_NaN();

struct Summed {
    ColumnSummary summary;
    Row least;
    Row greatest;
};

Summed summed(const ColumnStatistics& statistics) {
    return {statistics.summarize().front(), statistics.getLeast(), statistics.getGreatest()};
}

Summed sumUp(int type, const std::vector<double>& values) {
    const auto config = SensorFile::configOfTypes({type});
    ColumnStatistics statistics(config, {0});
    Row row(config);
    for (std::size_t i = 0; i < values.size(); ++i) {
        row.setValue(0, values[i]);
        statistics.add(row, i);
    }
    return summed(statistics);
}

Summed sumUpWide(int type, const std::vector<std::uint64_t>& values) {
    const auto config = SensorFile::configOfTypes({type});
    ColumnStatistics statistics(config, {0});
    Row row(config);
    for (std::size_t i = 0; i < values.size(); ++i) {
        row.setBits(0, values[i]);
        statistics.add(row, i);
    }
    return summed(statistics);
}

TEST(ColumnStatistics, NumbersAreSummedUp) {
    const auto [sum, least, greatest] = sumUp(SensorFile::kDouble, {2.0, -1.0, 4.0, 4.0, 1.0});
    EXPECT_EQ(sum.count, 5U);
    EXPECT_EQ(least.getValue(0), -1.0);
    EXPECT_EQ(greatest.getValue(0), 4.0);
    EXPECT_DOUBLE_EQ(sum.mean, 2.0);
    EXPECT_DOUBLE_EQ(sum.deviation, std::sqrt(18.0 / 4.0));
    EXPECT_EQ(sum.atLeast, 1U);
    EXPECT_EQ(sum.atGreatest, 2U);
    EXPECT_EQ(sum.repeated, 1U);
    EXPECT_EQ(sum.longestRun, 2U);
    EXPECT_EQ(sum.longestRunRow, 2U);
}

TEST(ColumnStatistics, NothingIsSummedUpWithoutValues) {
    const ColumnSummary sum = sumUp(SensorFile::kDouble, {}).summary;
    EXPECT_EQ(sum.count + sum.notFinite + sum.longestRun, 0U);
}

TEST(ColumnStatistics, WhatIsNotFiniteOnlyCountsAndEndsRuns) {
    const auto [sum, least, greatest] = sumUp(
        SensorFile::kFloat, {kNan, 1.0, 1.0, -std::numeric_limits<double>::infinity(), 1.0, 3.0});
    EXPECT_EQ(sum.count, 4U);
    EXPECT_EQ(sum.notFinite, 2U);
    EXPECT_EQ(least.getValue(0), 1.0);
    EXPECT_EQ(greatest.getValue(0), 3.0);
    EXPECT_EQ(sum.repeated, 1U);
    EXPECT_EQ(sum.longestRun, 2U);
    EXPECT_EQ(sum.longestRunRow, 1U);
    EXPECT_EQ(sumUp(SensorFile::kDouble, {kNan, kNan}).summary.count, 0U);
}

TEST(ColumnStatistics, FirstValueZeroIsNoRepetition) {
    EXPECT_EQ(sumUp(SensorFile::kDouble, {0.0, 1.0}).summary.repeated, 0U);
    EXPECT_EQ(sumUpWide(SensorFile::kUInt64, {0, 1}).summary.repeated, 0U);
}

TEST(ColumnStatistics, FloatingPointNumbersAreClippedInRunsAtTheirEnds) {
    const ColumnSummary sum =
        sumUp(SensorFile::kDouble, {5, 5, 5, 0, 7, 7, 7, 7, 1, 7, 7, 0, 0, 0, 2, 2, 2}).summary;
    EXPECT_EQ(sum.clippedHigh, 4U);
    EXPECT_EQ(sum.clippedLow, 3U);
    EXPECT_EQ(sum.atGreatest, 6U);
    EXPECT_EQ(sum.atLeast, 4U);
}

TEST(ColumnStatistics, TwoEqualNumbersAtTheEndAreNotClipped) {
    const ColumnSummary sum = sumUp(SensorFile::kFloat, {1, 7, 7, 1, 7, 7, 0, 0}).summary;
    EXPECT_EQ(sum.clippedHigh + sum.clippedLow, 0U);
}

TEST(ColumnStatistics, ConstantIsNotClipped) {
    const ColumnSummary sum = sumUp(SensorFile::kDouble, {2, 2, 2, 2, 2}).summary;
    EXPECT_EQ(sum.clippedHigh + sum.clippedLow, 0U);
    EXPECT_EQ(sum.longestRun, 5U);
}

TEST(ColumnStatistics, IntegersAreClippedAtTheLimitsOfTheirTypes) {
    struct Case {
        int type;
        double low;
        double high;
    };
    for (const Case& one :
         {Case{SensorFile::kInt8, -128, 127}, Case{SensorFile::kChar, -128, 127},
          Case{SensorFile::kInt16, -32768, 32767}, Case{SensorFile::kShort, -32768, 32767},
          Case{SensorFile::kInt32, -2147483648.0, 2147483647}}) {
        const ColumnSummary sum =
            sumUp(one.type, {one.low, 0, one.high, one.high, one.low + 1}).summary;
        EXPECT_EQ(sum.clippedLow, 1U) << one.type;
        EXPECT_EQ(sum.clippedHigh, 2U) << one.type;
        const ColumnSummary inside = sumUp(one.type, {one.low + 1, one.high - 1}).summary;
        EXPECT_EQ(inside.clippedLow + inside.clippedHigh, 0U) << one.type;
    }
    for (const Case& one :
         {Case{SensorFile::kUInt8, 0, 255}, Case{SensorFile::kUChar, 0, 255},
          Case{SensorFile::kUInt16, 0, 65535}, Case{SensorFile::kUShort, 0, 65535},
          Case{SensorFile::kUInt32, 0, 4294967295.0}}) {
        const ColumnSummary sum = sumUp(one.type, {0, 0, 0, one.high}).summary;
        EXPECT_EQ(sum.clippedLow, 0U) << one.type;
        EXPECT_EQ(sum.clippedHigh, 1U) << one.type;
    }
}

TEST(ColumnStatistics, TruthIsNotClipped) {
    const ColumnSummary sum = sumUp(SensorFile::kBool, {0, 1, 1, 1, 0, 0, 0}).summary;
    EXPECT_EQ(sum.clippedHigh + sum.clippedLow, 0U);
}

TEST(ColumnStatistics, IntegersOf64BitsAreExact) {
    constexpr std::uint64_t kLast = std::numeric_limits<std::uint64_t>::max();
    {
        const auto [sum, least, greatest] =
            sumUpWide(SensorFile::kUInt64, {kLast - 1, kLast, kLast - 3, kLast - 3});
        EXPECT_EQ(least.getBits(0), kLast - 3);
        EXPECT_EQ(greatest.getBits(0), kLast);
        EXPECT_EQ(sum.repeated, 1U);
        EXPECT_EQ(sum.atLeast, 2U);
        EXPECT_EQ(sum.clippedHigh, 1U);
        EXPECT_DOUBLE_EQ(sum.deviation, 1.5);
    }
    const auto bits = [](std::int64_t value) { return std::bit_cast<std::uint64_t>(value); };
    constexpr std::int64_t kLeast = std::numeric_limits<std::int64_t>::min();
    {
        const auto [sum, least, greatest] =
            sumUpWide(SensorFile::kInt64, {bits(-1), bits(kLeast), bits(5), ~bits(kLeast)});
        EXPECT_EQ(least.getBits(0), bits(kLeast));
        EXPECT_EQ(greatest.getBits(0), ~bits(kLeast));
        EXPECT_EQ(sum.clippedLow, 1U);
        EXPECT_EQ(sum.clippedHigh, 1U);
        EXPECT_NEAR(sum.mean, 0.75, 1024.0);  // of numbers up to 2^63
    }
}

TEST(ColumnStatistics, DistancesOf64BitIntegersReachFromEndToEnd) {
    constexpr std::uint64_t kLast = std::numeric_limits<std::uint64_t>::max();
    EXPECT_EQ(distanceBetween(0, kLast, false), 18446744073709551616.0);
    EXPECT_EQ(distanceBetween(kLast, 0, false), -18446744073709551616.0);
    EXPECT_EQ(distanceBetween(kLast, 0, true), 1.0);
    EXPECT_EQ(distanceBetween(std::uint64_t{1} << 63, kLast >> 1, true), 18446744073709551616.0);
}

TEST(ColumnStatistics, ChosenColumnsAreSummedUpInTheirOrder) {
    const auto config = SensorFile::configOf(
        {{"A", SensorFile::kDouble}, {"B", SensorFile::kInt64}, {"C", SensorFile::kUInt8}});
    ColumnStatistics statistics(config, {2, 0});
    Row row(config);
    row.setValue(0, 1.5);
    row.setValue(2, 7.0);
    statistics.add(row, 0);
    const std::vector<ColumnSummary> summaries = statistics.summarize();
    ASSERT_EQ(summaries.size(), 2U);
    EXPECT_EQ(summaries[0].name, "C");
    EXPECT_EQ(summaries[0].type, "uint8");
    EXPECT_EQ(summaries[0].mean, 7.0);
    EXPECT_EQ(summaries[1].mean, 1.5);
}

}  // namespace

}  // namespace SensorFileTool
