#pragma once

#include "framework/Export.hpp"

#include <array>

namespace Quoril::Core {

/// Three components along the axes of the unit.
using ImuVector = std::array<double, 3>;

/// What an ideal inertial unit measures that somebody turns about in the hand.
///
/// The unit yaws steadily while it rolls and pitches back and forth and is bobbed a little up and
/// down. Turns are Rz(yaw) Ry(pitch) Rx(roll), from the unit's axes to the world's (x to magnetic
/// north, z up). Only sums and products in a fixed order are used, no library functions whose last
/// bits differ between systems: the values are the same to the bit everywhere.
class QUORIL_CORE_API ImuMotion {
 public:
    /// @param rate  steps per second, above 0
    explicit ImuMotion(double rate);

    /// Goes to the next sample.
    void step();

    /// Measurements of the present sample.
    struct Sample {
        ImuVector acceleration;  ///< m/s^2, with the reaction to gravity: +9.8 upward at rest
        ImuVector turnRate;      ///< rad/s
        ImuVector field;         ///< microtesla
    };
    [[nodiscard]] Sample getSample() const;

 private:
    /// Sine and cosine of an angle that grows by the same amount at each step.
    class Oscillator {
     public:
        Oscillator(double frequency, double rate);
        void step();

        double sine = 0.0;
        double cosine = 1.0;

     private:
        double stepSine_ = 0.0;
        double stepCosine_ = 1.0;
    };

    Oscillator roll_;
    Oscillator pitch_;
    Oscillator yaw_;
    Oscillator bob_;
};

}  // namespace Quoril::Core
