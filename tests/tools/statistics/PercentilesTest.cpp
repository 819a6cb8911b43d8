#include "tools/statistics/Percentiles.hpp"
#include "tools/statistics/RefinedPercentiles.hpp"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdint>
#include <limits>
#include <random>
#include <vector>

#include <gtest/gtest.h>
#include <rapidcheck/gtest.h>

namespace SensorFileTool {

namespace {

constexpr std::array kShares = {0.0, 0.01, 0.05, 0.5, 0.95, 0.99, 1.0};
constexpr double kCoarse = 1.0 / 1024.0;
constexpr double kFine = 1e-6;

Percentiles countOf(const std::vector<double>& numbers) {
    Percentiles percentiles;
    for (const double number : numbers)
        percentiles.add(number);
    return percentiles;
}

double exactPercentile(std::vector<double> numbers, double share) {
    std::sort(numbers.begin(), numbers.end());
    const double position = share * static_cast<double>(numbers.size() - 1);
    const auto rank = static_cast<std::size_t>(position);
    const std::size_t next = std::min(rank + 1, numbers.size() - 1);
    return numbers[rank] + (position - std::floor(position)) * (numbers[next] - numbers[rank]);
}

/// The largest of the two neighbours may be far larger than what lies between them.
double scaleAt(std::vector<double> numbers, double share) {
    std::sort(numbers.begin(), numbers.end());
    const auto rank = static_cast<std::size_t>(share * static_cast<double>(numbers.size() - 1));
    const std::size_t next = std::min(rank + 1, numbers.size() - 1);
    return std::max(std::abs(numbers[rank]), std::abs(numbers[next]));
}

void expectNear(const std::vector<double>& numbers) {
    const Percentiles coarse = countOf(numbers);
    RefinedPercentiles fine(coarse, kShares);
    for (const double number : numbers)
        fine.add(number);
    for (const double share : kShares) {
        const double exact = exactPercentile(numbers, share);
        const double scale = scaleAt(numbers, share);
        EXPECT_NEAR(coarse.getPercentile(share), exact, scale * kCoarse) << share;
        EXPECT_NEAR(fine.getPercentile(share), exact, scale * kFine) << share;
    }
}

TEST(Percentiles, NoNumbersGiveZero) {
    EXPECT_EQ(Percentiles().getPercentile(0.5), 0.0);
    EXPECT_EQ(RefinedPercentiles().getPercentile(0.5), 0.0);
    EXPECT_EQ(RefinedPercentiles(Percentiles(), kShares).getPercentile(0.5), 0.0);
}

TEST(Percentiles, FewNumbersAreExact) {
    EXPECT_EQ(countOf({0.1}).getPercentile(0.5), 0.1);
    EXPECT_EQ(countOf({0.1, 0.3}).getPercentile(0.0), 0.1);
    EXPECT_EQ(countOf({0.1, 0.3}).getPercentile(1.0), 0.3);
    EXPECT_EQ(countOf({1.0, 2.0}).getPercentile(0.5), 1.5);
    EXPECT_EQ(countOf({3.0, 1.0, 2.0}).getPercentile(0.5), 2.0);
}

TEST(Percentiles, SameNumberOverAndOverIsExact) {
    const Percentiles percentiles = countOf(std::vector<double>(1000, 0.005));
    for (const double share : kShares)
        EXPECT_EQ(percentiles.getPercentile(share), 0.005);
    EXPECT_TRUE(RefinedPercentiles(percentiles, kShares).isExact());
}

TEST(Percentiles, SignsAndZerosAreInOrder) {
    const Percentiles percentiles = countOf({5.0, -1.0, 0.0, -7.0, 0.0, 3.0, -0.0});
    const std::array<double, 7> expected = {-7.0, -1.0, 0.0, 0.0, 0.0, 3.0, 5.0};
    for (std::size_t i = 0; i < expected.size(); ++i)
        EXPECT_EQ(percentiles.getPercentile(static_cast<double>(i) / 6.0), expected[i]) << i;
}

TEST(Percentiles, EndsAreExactInCrowdedBuckets) {
    const std::vector<double> numbers = {1.0001, 1.0002, 1.0003, 1.0004, -1.0001, -1.0002, -1.0003};
    EXPECT_EQ(countOf(numbers).getPercentile(0.0), -1.0003);
    EXPECT_EQ(countOf(numbers).getPercentile(1.0), 1.0004);
}

TEST(Percentiles, HugeAndTinyNumbersStayInOrder) {
    const double huge = std::numeric_limits<double>::max();
    const double tiny = std::numeric_limits<double>::denorm_min();
    const Percentiles percentiles = countOf({huge, tiny, -huge, 1.0, -tiny});
    EXPECT_EQ(percentiles.getPercentile(0.0), -huge);
    EXPECT_EQ(percentiles.getPercentile(0.25), 0.0);
    EXPECT_EQ(percentiles.getPercentile(0.5), 0.0);
    EXPECT_EQ(percentiles.getPercentile(0.75), 1.0);
    EXPECT_EQ(percentiles.getPercentile(1.0), huge);
}

TEST(Percentiles, StepsOfACrowdedRecordingAreNearTheExactOnes) {
    std::mt19937_64 numbers(20170523);
    std::normal_distribution<double> step(0.005, 2e-7);
    std::vector<double> steps(20001);
    std::generate(steps.begin(), steps.end(), [&] { return step(numbers); });
    steps[7] = 0.5;
    steps[9] = -0.25;
    expectNear(steps);
}

RC_GTEST_PROP(Percentiles, AnyNumbersAreNearTheExactOnes, ()) {
    const auto count = *rc::gen::inRange<std::size_t>(1, 2000);
    const auto spread = *rc::gen::inRange(1, 60);
    std::mt19937_64 numbers(*rc::gen::arbitrary<std::uint32_t>());
    std::uniform_real_distribution<double> mantissa(-1.0, 1.0);
    std::uniform_int_distribution<int> exponent(-spread, spread);
    std::vector<double> values(count);
    std::generate(values.begin(), values.end(),
                  [&] { return std::ldexp(mantissa(numbers), exponent(numbers)); });
    expectNear(values);
}

}  // namespace

}  // namespace SensorFileTool
