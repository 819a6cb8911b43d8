#include "sensorfile/ColumnType.hpp"
#include "tools/import/StampSteps.hpp"

#include <algorithm>
#include <string>
#include <vector>

#include <gtest/gtest.h>
#include <rapidcheck/gtest.h>

namespace SensorFileTool {
namespace {

TimeColumn columnOf(const std::string& name) {
    SensorFile::SensorFileConfig config;
    config.addColumn(name, SensorFile::kDouble);
    return findTimeColumns(config).at(0);
}

std::optional<double> measure(const std::string& name, const std::vector<std::string>& stamps,
                              int typeCode = SensorFile::kDouble) {
    StampSteps steps(columnOf(name));
    for (const std::string& stamp : stamps)
        steps.add(stamp, {});
    return steps.measure(typeCode, 200.0);
}

TEST(StepMedianTest, IsTheMiddleOrTheSmallerOfTwo) {
    StepMedian median;
    EXPECT_TRUE(median.isEmpty());
    for (const double step : {5.0, 1.0, 3.0})
        median.add(step);
    EXPECT_EQ(median.get(), 3.0);
    median.add(4.0);
    EXPECT_EQ(median.get(), 3.0);
}

TEST(StepMedianTest, OfManyStepsEvenlySpreadOnesAreKept) {
    // The first quarter is 1, the rest 2: a median of the first ones alone would be 1.
    StepMedian median;
    constexpr int kCount = 4 * static_cast<int>(StepMedian::kMaxKept) + 12345;
    for (int i = 0; i < kCount; ++i)
        median.add(i < kCount / 4 ? 1.0 : 2.0);
    EXPECT_EQ(median.get(), 2.0);
}

RC_GTEST_PROP(StepMedianTest, OfFewStepsIsThatOfASortedList, ()) {
    auto steps = *rc::gen::nonEmpty(rc::gen::arbitrary<std::vector<int>>());
    StepMedian median;
    for (const int step : steps)
        median.add(step);
    std::sort(steps.begin(), steps.end());
    RC_ASSERT(median.get() == static_cast<double>(steps[(steps.size() - 1) / 2]));
}

TEST(StampStepsTest, FrequencyIsOneOverTheMedianStep) {
    EXPECT_EQ(measure("Time (s)", {"0", "0.005", "0.01", "0.5", "0.505"}), 200.0);
    EXPECT_EQ(measure("t_ms", {"0", "10", "20"}), 100.0);
}

TEST(StampStepsTest, WholeNumbersOf64BitsLoseNothing) {
    EXPECT_EQ(measure("timestamp_ns",
                      {"1737840291000000001", "1737840291001000001", "1737840291002000001"},
                      SensorFile::kInt64),
              1000.0);
    EXPECT_EQ(measure("timestamp_ns", {"18446744073700000000", "18446744073701000000"},
                      SensorFile::kUInt64),
              1000.0);
    EXPECT_EQ(measure("t_ms", {"-20", "-10", "0"}, SensorFile::kInt32), 100.0);
}

TEST(StampStepsTest, UnitIsGuessedFromWholeSteps) {
    EXPECT_EQ(measure("timestamp", {"0", "2468000", "4936000"}, SensorFile::kInt64), 405.186386);
    EXPECT_EQ(measure("timestamp", {"0", "10", "20"}, SensorFile::kInt32), 100.0);
}

TEST(StampStepsTest, RoundingOfTheStampsDoesNotShow) {
    std::vector<std::string> stamps;
    for (int i = 0; i < 100; ++i)
        stamps.push_back(std::to_string(1558680737.0 + 0.005 * i));
    EXPECT_NEAR(*measure("Time", stamps), 200.0, 0.01);
    EXPECT_EQ(measure("Time", {"0.1", "0.2", "0.3"}), 10.0);
}

TEST(StampStepsTest, StampsThatAreNoneMakeNoStep) {
    EXPECT_EQ(measure("Time", {"0", "", "nan", "x", "0.01", "0.02"}), 100.0);
}

TEST(StampStepsTest, NothingIsMeasuredWithoutSteps) {
    EXPECT_FALSE(measure("Time", {}));
    EXPECT_FALSE(measure("Time", {"1"}));
    EXPECT_FALSE(measure("Time", {"1", "1", "1"}));
    EXPECT_FALSE(measure("Time", {"3", "2", "1"}));
}

}  // namespace
}  // namespace SensorFileTool
