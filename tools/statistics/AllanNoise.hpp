#pragma once

#include "tools/statistics/AllanDeviation.hpp"

#include <optional>
#include <vector>

namespace SensorFileTool {

/// What an Allan deviation tells of a sensor's noise, as IEEE Std 952-1997, Annex C, has it. Only
/// averaging times with an error up to 25 % are looked at.
struct AllanNoise {
    /// N of sigma = N / sqrt(tau), where at least three averaging times in a row show the slope
    /// -1/2 (within 0.15 an octave): white noise, the angle random walk of a gyroscope. In the
    /// column's unit times sqrt(s).
    std::optional<double> white;
    /// K of sigma = K sqrt(tau / 3), where they show the slope +1/2: random walk of the rate. In
    /// the column's unit by sqrt(s).
    std::optional<double> walk;
    /// The least deviation, if it is neither the first nor the last, divided by
    /// sqrt(2 ln 2 / pi) = 0.664: bias instability, in the column's unit.
    std::optional<double> instability;
    double instabilityTau = 0.0;  ///< s
};

[[nodiscard]] AllanNoise estimateNoise(const std::vector<AllanPoint>& points);

}  // namespace SensorFileTool
