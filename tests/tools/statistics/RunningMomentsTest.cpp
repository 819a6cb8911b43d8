#include "tools/statistics/LineFit.hpp"
#include "tools/statistics/RunningMoments.hpp"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <random>
#include <vector>

#include <gtest/gtest.h>
#include <rapidcheck/gtest.h>

namespace SensorFileTool {

namespace {

RunningMoments momentsOf(const std::vector<double>& numbers) {
    RunningMoments moments;
    for (const double number : numbers)
        moments.add(number);
    return moments;
}

struct Exact {
    double mean;
    double deviation;
};

/// In two passes of long double, from the first number on.
Exact exactOf(const std::vector<double>& numbers) {
    const auto count = static_cast<long double>(numbers.size());
    const long double origin = numbers.front();
    long double sum = 0.0L;
    for (const double number : numbers)
        sum += number - origin;
    const long double mean = sum / count;
    long double squares = 0.0L;
    for (const double number : numbers)
        squares += (number - origin - mean) * (number - origin - mean);
    return {static_cast<double>(origin + mean),
            static_cast<double>(std::sqrt(squares / (count - 1.0L)))};
}

void expectExact(const std::vector<double>& numbers, double tolerance) {
    const RunningMoments moments = momentsOf(numbers);
    const Exact exact = exactOf(numbers);
    EXPECT_EQ(moments.getCount(), numbers.size());
    EXPECT_NEAR(moments.getMean(), exact.mean, tolerance * std::abs(exact.mean));
    EXPECT_NEAR(moments.getDeviation(), exact.deviation, tolerance * exact.deviation);
}

TEST(RunningMoments, NoNumberAndOneHaveNoDeviation) {
    EXPECT_EQ(RunningMoments().getMean(), 0.0);
    EXPECT_EQ(RunningMoments().getDeviation(), 0.0);
    EXPECT_EQ(momentsOf({7.5}).getMean(), 7.5);
    EXPECT_EQ(momentsOf({7.5}).getDeviation(), 0.0);
}

TEST(RunningMoments, DeviationIsThatOfASample) {
    EXPECT_EQ(momentsOf({1.0, 3.0}).getMean(), 2.0);
    EXPECT_DOUBLE_EQ(momentsOf({1.0, 3.0}).getDeviation(), std::sqrt(2.0));
}

TEST(RunningMoments, EqualNumbersHaveExactlyNoDeviation) {
    const RunningMoments moments = momentsOf(std::vector<double>(1000, 0.1));
    EXPECT_EQ(moments.getMean(), 0.1);
    EXPECT_EQ(moments.getDeviation(), 0.0);
}

TEST(RunningMoments, SmallDeviationsFromALargeMeanKeepTheirDigits) {
    expectExact({1e9 + 4.0, 1e9 + 7.0, 1e9 + 13.0, 1e9 + 16.0}, 1e-15);
    std::mt19937_64 numbers(20170523);
    std::normal_distribution<double> small(0.0, 1e-3);
    std::vector<double> values(100000);
    std::generate(values.begin(), values.end(), [&] { return 1e9 + small(numbers); });
    expectExact(values, 1e-12);
}

TEST(RunningMoments, FirstNumberFarOffDoesLittleHarm) {
    std::mt19937_64 numbers(20170523);
    std::normal_distribution<double> small(0.0, 1.0);
    std::vector<double> values(100000);
    std::generate(values.begin(), values.end(), [&] { return 1e6 + small(numbers); });
    values.front() = 0.0;
    expectExact(values, 1e-12);
}

RC_GTEST_PROP(RunningMoments, AnyNumbersAreNearTheExactOnes, ()) {
    const auto offset = std::ldexp(1.0, *rc::gen::inRange(-20, 40));
    std::mt19937_64 numbers(*rc::gen::arbitrary<std::uint32_t>());
    std::uniform_real_distribution<double> small(-1.0, 1.0);
    std::vector<double> values(*rc::gen::inRange<std::size_t>(2, 500));
    std::generate(values.begin(), values.end(), [&] { return offset + small(numbers); });
    expectExact(values, 1e-11);
}

TEST(LineFit, PointsOnALineGiveItsSlope) {
    LineFit fit;
    EXPECT_EQ(fit.getSlope(), std::nullopt);
    fit.add(1e9, 5.0);
    EXPECT_EQ(fit.getSlope(), std::nullopt);
    for (int i = 1; i < 1000; ++i)
        fit.add(1e9 + i, 5.0 - 0.25 * i);
    EXPECT_NEAR(*fit.getSlope(), -0.25, 1e-12);
}

TEST(LineFit, ScatteredPointsGiveTheSlopeOfLeastSquares) {
    LineFit fit;
    fit.add(0.0, 1.0);
    fit.add(1.0, 0.0);
    fit.add(2.0, 4.0);
    EXPECT_NEAR(*fit.getSlope(), 1.5, 1e-15);
}

}  // namespace

}  // namespace SensorFileTool
