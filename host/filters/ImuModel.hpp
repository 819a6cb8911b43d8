#pragma once

#include "framework/Export.hpp"
#include "host/filters/ImuMotion.hpp"
#include "host/filters/ImuNoise.hpp"

#include <cstdint>

namespace Quoril::Core {

/// How one of the unit's three sensors errs, and how it counts.
struct ImuSensorSettings {
    double noiseDensity = 0.0;  ///< unit per sqrt(Hz): the deviation is this x sqrt(rate / 2)
    ImuVector bias{};           ///< in the sensor's unit
    double unitsPerCount = 1.0;
};

/// Settings of a simulated inertial unit.
struct ImuSettings {
    double rate = 200.0;  ///< frames per second
    std::uint64_t seed = 1;
    double dropOutProbability = 0.0;  ///< below 1
    bool isRaw = false;               ///< values as counts of a 16-bit sensor
    ImuSensorSettings acc;
    ImuSensorSettings gyr;
    ImuSensorSettings mag;
};

/// What the unit sends of one frame, in its units or in counts.
struct ImuFrame {
    ImuVector acc{};
    ImuVector gyr{};
    ImuVector mag{};
};

/// A simulated inertial unit: its frames, one after the other, the same to the bit for the same
/// settings on every platform.
class QUORIL_CORE_API ImuModel {
 public:
    /// Starts with frame 0.
    explicit ImuModel(const ImuSettings& settings);

    /// Changes everything but rate and seed, from the present frame on.
    void setErrors(const ImuSettings& settings);

    /// Values of the present frame.
    [[nodiscard]] ImuFrame getFrame() const;
    [[nodiscard]] std::uint64_t getIndex() const noexcept { return index_; }

    /// Goes to the next frame that does not drop out. Frame 0 never does.
    /// @return how many frames it went on, 1 or more
    std::uint64_t advance();

 private:
    [[nodiscard]] bool dropsOut() const;
    void updateDeviations();

    ImuSettings settings_;
    ImuNoise noise_;
    ImuMotion motion_;
    std::uint64_t index_ = 0;
    double accDeviation_ = 0.0;
    double gyrDeviation_ = 0.0;
    double magDeviation_ = 0.0;
};

}  // namespace Quoril::Core
