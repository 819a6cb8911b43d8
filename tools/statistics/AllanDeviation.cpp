#include "tools/statistics/AllanDeviation.hpp"

#include <cmath>

namespace SensorFileTool {

void AllanDeviation::Level::addTerm(std::uint64_t lag, Total& total) const {
    if (last < 2 * lag) return;
    const double first = sums[(last - 2 * lag) & kRingMask];
    const double middle = sums[(last - lag) & kRingMask];
    const double second = sums[last & kRingMask] - 2.0 * middle + first;
    total.squares += second * second;
    ++total.terms;
}

void AllanDeviation::add(double value) {
    ++count_;
    sum_ += value;
    Level& all = levels_.front();
    all.push(sum_);
    for (std::size_t i = 0; i <= kFullBits; ++i)
        all.addTerm(std::uint64_t{1} << i, totals_[i]);
    std::uint64_t rest = count_;
    for (std::size_t i = 1; rest % 2 == 0; ++i) {
        rest /= 2;
        if (i == levels_.size()) {
            levels_.emplace_back();
            totals_.emplace_back();
        }
        levels_[i].push(sum_);
        levels_[i].addTerm(std::uint64_t{1} << kFullBits, totals_[kFullBits + i]);
    }
}

std::vector<AllanPoint> AllanDeviation::getPoints(double rate) const {
    std::vector<AllanPoint> points;
    for (std::size_t i = 0; i < totals_.size() && totals_[i].terms > 0; ++i) {
        AllanPoint point;
        point.samples = std::uint64_t{1} << i;
        const auto samples = static_cast<double>(point.samples);
        point.tau = samples / rate;
        point.terms = totals_[i].terms;
        point.deviation =
            std::sqrt(totals_[i].squares / (2.0 * static_cast<double>(point.terms))) / samples;
        const double clusters = static_cast<double>(count_) / samples;
        point.error = 1.0 / std::sqrt(2.0 * (clusters - 1.0));
        points.push_back(point);
    }
    return points;
}

}  // namespace SensorFileTool
