#include "tools/statistics/AllanNoise.hpp"

#include <algorithm>
#include <cmath>
#include <iterator>
#include <numbers>

namespace SensorFileTool {

namespace {

constexpr double kMostError = 0.25;
constexpr double kSlopeTolerance = 0.15;
constexpr std::size_t kFewestPoints = 3;

double slopeBetween(const AllanPoint& from, const AllanPoint& to) {
    return std::log(to.deviation / from.deviation) / std::log(to.tau / from.tau);
}

/// sigma / tau^slope over the longest row of points of that slope: the mean of its logarithms,
/// weighted by their errors.
std::optional<double> fitSlope(const std::vector<AllanPoint>& points, double slope) {
    std::size_t begin = 0;
    std::size_t bestBegin = 0;
    std::size_t bestSize = 0;
    for (std::size_t i = 0; i < points.size(); ++i) {
        const bool isOn =
            i > begin && std::abs(slopeBetween(points[i - 1], points[i]) - slope) < kSlopeTolerance;
        if (!isOn) begin = i;
        if (i - begin + 1 > bestSize) {
            bestBegin = begin;
            bestSize = i - begin + 1;
        }
    }
    if (bestSize < kFewestPoints) return std::nullopt;
    double sum = 0.0;
    double weights = 0.0;
    for (std::size_t i = bestBegin; i < bestBegin + bestSize; ++i) {
        const double weight = 1.0 / (points[i].error * points[i].error);
        sum += weight * (std::log(points[i].deviation) - slope * std::log(points[i].tau));
        weights += weight;
    }
    return std::exp(sum / weights);
}

}  // namespace

AllanNoise estimateNoise(const std::vector<AllanPoint>& points) {
    std::vector<AllanPoint> sure;
    std::copy_if(points.begin(), points.end(), std::back_inserter(sure), [](const auto& point) {
        return point.error <= kMostError && point.deviation > 0.0 && std::isfinite(point.deviation);
    });
    AllanNoise noise;
    noise.white = fitSlope(sure, -0.5);
    noise.walk = fitSlope(sure, 0.5);
    if (noise.walk) *noise.walk *= std::sqrt(3.0);
    const auto least = std::min_element(
        sure.begin(), sure.end(),
        [](const auto& one, const auto& other) { return one.deviation < other.deviation; });
    if (least == sure.end() || least == sure.begin() || least + 1 == sure.end()) return noise;
    noise.instability = least->deviation / std::sqrt(2.0 * std::numbers::ln2 / std::numbers::pi);
    noise.instabilityTau = least->tau;
    return noise;
}

}  // namespace SensorFileTool
