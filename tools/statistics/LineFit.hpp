#pragma once

#include <cstdint>
#include <optional>

namespace SensorFileTool {

/// The straight line of least squares through points that come one by one.
class LineFit {
 public:
    void add(double x, double y) {
        const double weight = 1.0 / static_cast<double>(++count_);
        const double deviation = x - meanX_;
        meanX_ += deviation * weight;
        meanY_ += (y - meanY_) * weight;
        squares_ += deviation * (x - meanX_);
        products_ += deviation * (y - meanY_);
    }

    /// Nothing if all points have the same x.
    [[nodiscard]] std::optional<double> getSlope() const {
        if (!(squares_ > 0.0)) return std::nullopt;
        return products_ / squares_;
    }

 private:
    std::uint64_t count_ = 0;
    double meanX_ = 0.0;
    double meanY_ = 0.0;
    double squares_ = 0.0;   ///< sum of (x - mean of x)^2
    double products_ = 0.0;  ///< sum of (x - mean of x) (y - mean of y)
};

}  // namespace SensorFileTool
