#include "tools/plot/PlotLevel.hpp"

#include <algorithm>
#include <array>
#include <cmath>
#include <limits>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <rapidcheck.h>
#include <rapidcheck/gtest.h>

namespace SensorFileTool {
namespace {

using testing::ElementsAre;
using testing::ElementsAreArray;
using testing::IsNan;

constexpr double kNone = std::numeric_limits<double>::quiet_NaN();

/// Of one column, at positions 10, 20, ...
PlotLevel levelOf(const std::vector<double>& values, std::uint64_t buckets, std::uint64_t gap = 0) {
    PlotLevel level(1, values.size(), buckets);
    for (std::size_t row = 0; row < values.size(); ++row) {
        const auto position = 10.0 * static_cast<double>(row + 1);
        if (gap > 0 && row == gap) level.addGap(position - 5.0);
        level.add(row, position, std::array{values[row]});
    }
    level.finish();
    return level;
}

TEST(PlotLevelTest, FewRowsAreTakenAsTheyAre) {
    const PlotLevel level = levelOf({5, 1, 7, 3}, 2);
    EXPECT_TRUE(level.isRaw());
    EXPECT_THAT(level.getPositions(), ElementsAre(10, 20, 30, 40));
    EXPECT_THAT(level.getValues(0), ElementsAre(5, 1, 7, 3));
}

TEST(PlotLevelTest, OfABucketBothExtremesAreTakenInTheirOrder) {
    const PlotLevel level = levelOf({5, 1, 7, 9, 8, 2}, 2);
    EXPECT_FALSE(level.isRaw());
    EXPECT_THAT(level.getPositions(), ElementsAre(10, 30, 40, 60));
    EXPECT_THAT(level.getValues(0), ElementsAre(1, 7, 9, 2));
}

TEST(PlotLevelTest, BucketsDifferByOneRowAtMost) {
    const PlotLevel level = levelOf({0, 1, 2, 3, 4, 5, 6}, 3);
    EXPECT_THAT(level.getPositions(), ElementsAre(10, 20, 30, 40, 50, 70));
    EXPECT_THAT(level.getValues(0), ElementsAre(0, 1, 2, 3, 4, 6));
}

TEST(PlotLevelTest, GapsEndABucketAndBreakTheLine) {
    const PlotLevel level = levelOf({0, 1, 2, 3, 4, 5, 6}, 1, 4);
    EXPECT_THAT(level.getPositions(), ElementsAre(10, 40, 45, 45, 50, 70));
    EXPECT_THAT(level.getValues(0), ElementsAre(0, 3, IsNan(), IsNan(), 4, 6));
}

TEST(PlotLevelTest, GapsBetweenRawRowsBreakTheLine) {
    const PlotLevel level = levelOf({0, 1, 2}, 2, 2);
    EXPECT_THAT(level.getPositions(), ElementsAre(10, 20, 25, 30));
    EXPECT_THAT(level.getValues(0), ElementsAre(0, 1, IsNan(), 2));
}

TEST(PlotLevelTest, ValuesThatAreNotFiniteAreLeftOut) {
    constexpr double kInfinity = std::numeric_limits<double>::infinity();
    const PlotLevel level = levelOf({kNone, 1, -kInfinity, kNone, kInfinity, kNone}, 2);
    EXPECT_THAT(level.getValues(0), ElementsAre(1, 1, IsNan(), IsNan()));
    EXPECT_THAT(levelOf({kInfinity, 1}, 2).getValues(0), ElementsAre(IsNan(), 1));
}

TEST(PlotLevelTest, ColumnsHaveTheirOwnExtremes) {
    PlotLevel level(2, 5, 1);
    for (std::uint64_t row = 0; row < 5; ++row)
        level.add(row, static_cast<double>(row),
                  std::array{static_cast<double>(row), -static_cast<double>(row)});
    level.finish();
    EXPECT_THAT(level.getValues(0), ElementsAre(0, 4));
    EXPECT_THAT(level.getValues(1), ElementsAre(0, -4));
}

TEST(PlotLevelTest, PointsAreCountedBeforehand) {
    EXPECT_EQ(PlotLevel::countPoints(10, 5), 10U);
    EXPECT_EQ(PlotLevel::countPoints(9, 5), 9U);
    EXPECT_EQ(PlotLevel::countPoints(11, 5), 10U);
}

TEST(PlotLevelTest, BucketsOfRowsWithoutNumberAreFound) {
    // A recording of 400 thousand million rows, of which some are looked at.
    constexpr std::uint64_t kRows = 400'000'000'000;
    PlotLevel level(1, kRows, 100'000);
    for (const std::uint64_t row : {std::uint64_t{0}, kRows / 2, kRows - 1})
        level.add(row, static_cast<double>(row), std::array{1.0});
    level.finish();
    EXPECT_EQ(level.getPositions().size(), 6U);
}

RC_GTEST_PROP(PlotLevelTest, CoarseLevelsAreThoseOfTheRows, (std::vector<std::int16_t> numbers)) {
    const std::vector<double> values(numbers.begin(), numbers.end());
    const auto buckets = *rc::gen::inRange<std::uint64_t>(1, 40);
    const auto factor = *rc::gen::inRange<std::uint64_t>(1, 6);
    const auto gap = *rc::gen::inRange<std::uint64_t>(0, values.size() + 1);
    const PlotLevel direct = levelOf(values, buckets, gap);
    for (const std::uint64_t finer : {buckets * factor, values.size() + 1}) {
        const PlotLevel level = levelOf(values, finer, gap).coarsen(buckets);
        RC_ASSERT(level.isRaw() == direct.isRaw());
        RC_ASSERT(level.getPositions() == direct.getPositions());
        RC_ASSERT(level.getValues(0).size() == direct.getValues(0).size());
        for (std::size_t i = 0; i < direct.getValues(0).size(); ++i) {
            const double one = level.getValues(0)[i];
            const double other = direct.getValues(0)[i];
            RC_ASSERT(one == other || (std::isnan(one) && std::isnan(other)));
        }
    }
}

}  // namespace
}  // namespace SensorFileTool
