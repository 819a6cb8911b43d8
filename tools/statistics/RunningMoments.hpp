#pragma once

#include <cmath>
#include <cstdint>

namespace SensorFileTool {

/// Mean and standard deviation of numbers that come one by one, by Welford's recurrence on their
/// distances from the first one: digits are not lost to a large mean.
class RunningMoments {
 public:
    /// @param value  must be finite
    void add(double value) {
        if (count_++ == 0) origin_ = value;
        const double distance = value - origin_;
        const double deviation = distance - mean_;
        mean_ += deviation / static_cast<double>(count_);
        squares_ += deviation * (distance - mean_);
    }

    [[nodiscard]] std::uint64_t getCount() const { return count_; }
    /// 0 without numbers.
    [[nodiscard]] double getMean() const { return origin_ + mean_; }
    /// Of a sample, that is with count - 1; 0 with fewer than two numbers.
    [[nodiscard]] double getDeviation() const {
        return count_ < 2 ? 0.0 : std::sqrt(squares_ / static_cast<double>(count_ - 1));
    }

 private:
    std::uint64_t count_ = 0;
    double origin_ = 0.0;
    double mean_ = 0.0;     ///< from the origin
    double squares_ = 0.0;  ///< sum of squared deviations from the mean
};

}  // namespace SensorFileTool
