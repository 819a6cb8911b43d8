#pragma once

#include <array>
#include <cstdint>

namespace SensorFileTool {

/// A sensor held in a hand that rocks and slowly turns around: what its accelerometer, gyroscope
/// and magnetometer measure, free of noise. Computed in integers, so that every machine finds the
/// same.
///
/// The sensor's attitude is yaw, then pitch, then roll (about z, the new y, the newest x). At rest
/// its z axis points up and its x axis north.
class SyntheticMotion {
 public:
    using Vector = std::array<std::int64_t, 3>;

    struct Sample {
        Vector acceleration{};  ///< gravity's reaction, in um/s^2
        Vector rate{};          ///< in urad/s
        Vector field{};         ///< in nT
    };

    /// @param frequency  samples per second
    /// @param phase  where the motion begins: any number
    SyntheticMotion(double frequency, std::uint64_t phase);

    [[nodiscard]] Sample sampleAt(std::uint64_t number) const;

 private:
    /// A turning angle, or one that swings as a sine does.
    struct Swing {
        std::uint64_t start = 0;  ///< 2^64 is a turn
        std::uint64_t step = 0;   ///< each sample
    };

    Swing roll_;
    Swing pitch_;
    Swing yaw_;
};

/// Sine in units of 2^-30, off by less than 1e-6.
/// @param angle  2^32 is a turn
[[nodiscard]] std::int64_t fixedSine(std::uint32_t angle);

}  // namespace SensorFileTool
