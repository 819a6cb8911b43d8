#include "tools/statistics/AllanDeviation.hpp"
#include "tools/statistics/AllanNoise.hpp"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <random>
#include <vector>

#include <gtest/gtest.h>
#include <rapidcheck/gtest.h>

namespace SensorFileTool {

namespace {

constexpr std::size_t kFullOverlap = 256;

std::vector<AllanPoint> pointsOf(const std::vector<double>& values, double rate = 1.0) {
    AllanDeviation deviation;
    for (const double value : values)
        deviation.add(value);
    EXPECT_EQ(deviation.getCount(), values.size());
    return deviation.getPoints(rate);
}

double meanOf(const std::vector<double>& values, std::size_t first, std::size_t size) {
    long double sum = 0.0L;
    for (std::size_t i = first; i < first + size; ++i)
        sum += values[i];
    return static_cast<double>(sum / static_cast<long double>(size));
}

/// Half the mean square difference of neighbouring averages, one pair after the other.
double referenceDeviation(const std::vector<double>& values, std::size_t samples,
                          std::size_t stride, std::uint64_t& terms) {
    double sum = 0.0;
    terms = 0;
    for (std::size_t k = 0; k + 2 * samples <= values.size(); k += stride) {
        const double difference = meanOf(values, k + samples, samples) - meanOf(values, k, samples);
        sum += difference * difference;
        ++terms;
    }
    return std::sqrt(sum / (2.0 * static_cast<double>(terms)));
}

void expectReference(const std::vector<double>& values, double tolerance) {
    const std::vector<AllanPoint> points = pointsOf(values);
    std::size_t samples = 1;
    for (const AllanPoint& point : points) {
        EXPECT_EQ(point.samples, samples);
        std::uint64_t terms = 0;
        const double expected = referenceDeviation(
            values, samples, std::max<std::size_t>(1, samples / kFullOverlap), terms);
        EXPECT_EQ(point.terms, terms);
        EXPECT_NEAR(point.deviation, expected, tolerance * expected) << samples;
        samples *= 2;
    }
    EXPECT_GT(2 * samples, values.size());
}

std::vector<double> whiteNoise(std::size_t count, double deviation, unsigned seed) {
    std::mt19937_64 numbers(seed);
    std::normal_distribution<double> noise(0.0, deviation);
    std::vector<double> values(count);
    std::generate(values.begin(), values.end(), [&] { return noise(numbers); });
    return values;
}

std::vector<double> randomWalk(std::size_t count, double deviation, unsigned seed) {
    std::vector<double> values = whiteNoise(count, deviation, seed);
    for (std::size_t i = 1; i < count; ++i)
        values[i] += values[i - 1];
    return values;
}

TEST(AllanDeviation, FewValuesHaveFewPoints) {
    EXPECT_TRUE(pointsOf({}).empty());
    EXPECT_TRUE(pointsOf({1.0}).empty());
    const std::vector<AllanPoint> points = pointsOf({1.0, 4.0}, 100.0);
    ASSERT_EQ(points.size(), 1U);
    EXPECT_EQ(points[0].samples, 1U);
    EXPECT_EQ(points[0].tau, 0.01);
    EXPECT_DOUBLE_EQ(points[0].deviation, 3.0 / std::sqrt(2.0));
    EXPECT_EQ(points[0].terms, 1U);
    EXPECT_DOUBLE_EQ(points[0].error, 1.0 / std::sqrt(2.0));
    EXPECT_EQ(pointsOf({1.0, 4.0, 0.0}).size(), 1U);
    EXPECT_EQ(pointsOf({1.0, 4.0, 0.0, 2.0}).size(), 2U);
}

// The data and results that the literature gives for this purpose: nine averages.
TEST(AllanDeviation, KnownFrequenciesGiveKnownDeviations) {
    const std::vector<double> values = {892, 809, 823, 798, 671, 644, 883, 903, 677};
    const std::vector<AllanPoint> points = pointsOf(values);
    ASSERT_GE(points.size(), 2U);
    EXPECT_NEAR(points[0].deviation, 91.22945, 1e-5);
    EXPECT_NEAR(points[1].deviation, 85.95287, 1e-5);
}

TEST(AllanDeviation, ConstantHasNone) {
    for (const AllanPoint& point : pointsOf(std::vector<double>(5000, 0.25)))
        EXPECT_EQ(point.deviation, 0.0);
}

TEST(AllanDeviation, RampGrowsWithTheAveragingTime) {
    std::vector<double> values(4096);
    for (std::size_t i = 0; i < values.size(); ++i)
        values[i] = 0.5 * static_cast<double>(i);
    for (const AllanPoint& point : pointsOf(values))
        EXPECT_NEAR(point.deviation, 0.5 * point.tau / std::sqrt(2.0), 1e-12 * point.tau);
}

TEST(AllanDeviation, LongSeriesGiveWhatThePlainLoopsGive) {
    expectReference(whiteNoise(6000, 1.0, 1), 1e-10);
    expectReference(randomWalk(5000, 0.1, 2), 1e-10);
}

RC_GTEST_PROP(AllanDeviation, AnySeriesGivesWhatThePlainLoopsGive, ()) {
    const auto count = *rc::gen::inRange<std::size_t>(2, 1600);
    expectReference(whiteNoise(count, 1.0, *rc::gen::arbitrary<unsigned>()), 1e-9);
}

TEST(AllanDeviation, StepsBeyondFullOverlapMakeNoDifferenceToTheEstimate) {
    const std::vector<double> values = whiteNoise(16384, 1.0, 3);
    for (const AllanPoint& point : pointsOf(values)) {
        if (point.samples != 512 && point.samples != 2048) continue;
        std::uint64_t terms = 0;
        const double overlapped = referenceDeviation(values, point.samples, 1, terms);
        EXPECT_NEAR(point.deviation, overlapped, 0.005 * overlapped);
    }
}

TEST(AllanDeviation, WhiteNoiseHasTheSlopeOfMinusOneHalf) {
    const double rate = 200.0;
    const std::vector<AllanPoint> points = pointsOf(whiteNoise(200000, 0.02, 4), rate);
    const double coefficient = 0.02 / std::sqrt(rate);
    for (const AllanPoint& point : points)
        EXPECT_NEAR(point.deviation * std::sqrt(point.tau) / coefficient, 1.0, 5.0 * point.error);
    const AllanNoise noise = estimateNoise(points);
    ASSERT_TRUE(noise.white.has_value());
    EXPECT_NEAR(*noise.white, coefficient, 0.01 * coefficient);
    EXPECT_FALSE(noise.walk.has_value());
}

TEST(AllanDeviation, RandomWalkHasTheSlopeOfOneHalf) {
    const double rate = 100.0;
    const double coefficient = 0.01 * std::sqrt(rate);  // variance by second
    const std::vector<AllanPoint> points = pointsOf(randomWalk(400000, 0.01, 5), rate);
    const AllanNoise noise = estimateNoise(points);
    ASSERT_TRUE(noise.walk.has_value());
    EXPECT_NEAR(*noise.walk, coefficient, 0.05 * coefficient);
    EXPECT_FALSE(noise.white.has_value());
    EXPECT_FALSE(noise.instability.has_value());
}

TEST(AllanNoise, BothKindsOfNoiseHaveTheirCoefficientsAndALeastDeviationBetween) {
    const double rate = 100.0;
    std::vector<double> values = whiteNoise(1 << 20, 1.0, 6);
    const std::vector<double> walk = randomWalk(1 << 20, 0.002, 7);
    std::transform(values.begin(), values.end(), walk.begin(), values.begin(), std::plus<>());
    const std::vector<AllanPoint> points = pointsOf(values, rate);
    const AllanNoise noise = estimateNoise(points);
    ASSERT_TRUE(noise.white && noise.walk && noise.instability);
    EXPECT_NEAR(*noise.white, 0.1, 0.005);
    EXPECT_NEAR(*noise.walk, 0.02, 0.004);
    // N^2 / tau + K^2 tau / 3 is least at tau = sqrt(3) N / K, 8.7 s.
    EXPECT_NEAR(std::log2(noise.instabilityTau / 8.66), 0.0, 1.01);
    const double least = std::sqrt(2.0 * 0.1 * 0.02 / std::sqrt(3.0));
    EXPECT_NEAR(*noise.instability * 0.664, least, 0.1 * least);
}

TEST(AllanNoise, FewOrUnsurePointsTellNothing) {
    for (const std::size_t count : {0U, 2U, 8U}) {
        const AllanNoise noise = estimateNoise(pointsOf(whiteNoise(count, 1.0, 8)));
        EXPECT_FALSE(noise.white || noise.walk || noise.instability);
    }
    const AllanNoise noise = estimateNoise(pointsOf(std::vector<double>(1000, 1.0)));
    EXPECT_FALSE(noise.white || noise.walk || noise.instability);
}

}  // namespace

}  // namespace SensorFileTool
