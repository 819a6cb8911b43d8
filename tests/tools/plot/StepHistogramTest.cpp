#include "tools/plot/StepHistogram.hpp"

#include <algorithm>
#include <cmath>
#include <limits>
#include <vector>

#include <gtest/gtest.h>
#include <rapidcheck.h>
#include <rapidcheck/gtest.h>

namespace SensorFileTool {
namespace {

TEST(StepHistogramTest, WithoutStepsTheMedianIsZero) {
    EXPECT_EQ(StepHistogram().median(), 0.0);
}

TEST(StepHistogramTest, EqualStepsAreMetExactly) {
    for (const double step : {1.0, 0.005, 1e-9, 12345.678}) {
        StepHistogram steps;
        for (int i = 0; i < 1000; ++i)
            steps.add(step);
        EXPECT_EQ(steps.median(), step);
    }
}

TEST(StepHistogramTest, OfAnEvenNumberTheSmallerInTheMiddleCounts) {
    StepHistogram steps;
    for (const double step : {4.0, 1.0, 3.0, 2.0})
        steps.add(step);
    EXPECT_EQ(steps.median(), 2.0);
}

TEST(StepHistogramTest, WhatIsNoStepIsLeftOut) {
    StepHistogram steps;
    for (const double step :
         {0.0, -1.0, std::nan(""), std::numeric_limits<double>::infinity(), 5.0})
        steps.add(step);
    EXPECT_EQ(steps.median(), 5.0);
}

TEST(StepHistogramTest, StepsOfAnySizeAreTaken) {
    for (const double step : {std::numeric_limits<double>::denorm_min(), 1e-300, 1e300,
                              std::numeric_limits<double>::max()}) {
        StepHistogram steps;
        steps.add(step);
        EXPECT_GT(steps.median(), 0.0);
    }
}

RC_GTEST_PROP(StepHistogramTest, MedianIsMetToAHundredth, (std::vector<std::uint32_t> numbers)) {
    RC_PRE(!numbers.empty());
    StepHistogram steps;
    std::vector<double> sorted;
    for (const std::uint32_t number : numbers) {
        sorted.push_back((static_cast<double>(number) + 1.0) * 1e-6);
        steps.add(sorted.back());
    }
    std::sort(sorted.begin(), sorted.end());
    const double median = sorted[(sorted.size() - 1) / 2];
    RC_ASSERT(steps.median() <= median * 1.01);
    RC_ASSERT(steps.median() >= median * 0.99);
}

}  // namespace
}  // namespace SensorFileTool
