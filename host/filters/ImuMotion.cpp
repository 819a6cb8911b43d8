#include "host/filters/ImuMotion.hpp"

#include <cmath>

namespace Quoril::Core {
namespace {

constexpr double kTwoPi = 6.283185307179586;

// Of a hand that turns a unit about slowly: periods that do not divide each other, so that the
// motion does not repeat soon. Frequencies in Hz, amplitudes in rad and m/s^2.
constexpr double kRollFrequency = 0.41;
constexpr double kRollAmplitude = 0.5;
constexpr double kPitchFrequency = 0.27;
constexpr double kPitchAmplitude = 0.35;
constexpr double kYawFrequency = 0.11;
constexpr double kBobFrequency = 1.9;
constexpr double kBobAmplitude = 0.6;

// Standard gravity, m/s^2.
constexpr double kGravity = 9.80665;
// The earth's field in central Europe, microtesla: it points north and, steeply, down.
constexpr double kFieldNorth = 20.0;
constexpr double kFieldUp = -43.5;

struct SineCosine {
    double sine;
    double cosine;
};

// Taylor series: exact to the last bits for angles up to 0.6 rad.
SineCosine ofSmallAngle(double x) {
    const double y = x * x;
    double sine = 1.0 / 6227020800.0;
    for (const double c :
         {-1.0 / 39916800.0, 1.0 / 362880.0, -1.0 / 5040.0, 1.0 / 120.0, -1.0 / 6.0, 1.0})
        sine = sine * y + c;
    double cosine = -1.0 / 87178291200.0;
    for (const double c :
         {1.0 / 479001600.0, -1.0 / 3628800.0, 1.0 / 40320.0, -1.0 / 720.0, 1.0 / 24.0, -0.5, 1.0})
        cosine = cosine * y + c;
    return {sine * x, cosine};
}

// Of a number of whole turns: an eighth of the angle, doubled three times.
SineCosine ofTurns(double turns) {
    const double part = turns - std::floor(turns + 0.5);
    SineCosine angle = ofSmallAngle(part * (kTwoPi / 8.0));
    for (int i = 0; i < 3; ++i)
        angle = {2.0 * angle.sine * angle.cosine, 1.0 - 2.0 * angle.sine * angle.sine};
    return angle;
}

}  // namespace

ImuMotion::Oscillator::Oscillator(double frequency, double rate) {
    const SineCosine step = ofTurns(frequency / rate);
    stepSine_ = step.sine;
    stepCosine_ = step.cosine;
}

void ImuMotion::Oscillator::step() {
    const double s = sine * stepCosine_ + cosine * stepSine_;
    const double c = cosine * stepCosine_ - sine * stepSine_;
    // Keeps the pair on the unit circle, off which rounding would carry it.
    const double scale = 1.5 - 0.5 * (s * s + c * c);
    sine = s * scale;
    cosine = c * scale;
}

ImuMotion::ImuMotion(double rate)
    : roll_(kRollFrequency, rate),
      pitch_(kPitchFrequency, rate),
      yaw_(kYawFrequency, rate),
      bob_(kBobFrequency, rate) {}

void ImuMotion::step() {
    roll_.step();
    pitch_.step();
    yaw_.step();
    bob_.step();
}

ImuMotion::Sample ImuMotion::getSample() const {
    const SineCosine roll = ofSmallAngle(kRollAmplitude * roll_.sine);
    const SineCosine pitch = ofSmallAngle(kPitchAmplitude * pitch_.sine);
    const double rollRate = kRollAmplitude * kTwoPi * kRollFrequency * roll_.cosine;
    const double pitchRate = kPitchAmplitude * kTwoPi * kPitchFrequency * pitch_.cosine;
    const double yawRate = kTwoPi * kYawFrequency;

    // The world's vertical, seen along the unit's axes.
    const ImuVector up{-pitch.sine, pitch.cosine * roll.sine, pitch.cosine * roll.cosine};
    const ImuVector north{pitch.cosine * yaw_.cosine,
                          roll.sine * pitch.sine * yaw_.cosine - roll.cosine * yaw_.sine,
                          roll.cosine * pitch.sine * yaw_.cosine + roll.sine * yaw_.sine};

    Sample sample{};
    sample.turnRate = {rollRate + yawRate * up[0], pitchRate * roll.cosine + yawRate * up[1],
                       yawRate * up[2] - pitchRate * roll.sine};
    const double lift = kGravity + kBobAmplitude * bob_.sine;
    for (std::size_t i = 0; i < 3; ++i) {
        sample.acceleration[i] = lift * up[i];
        sample.field[i] = kFieldNorth * north[i] + kFieldUp * up[i];
    }
    return sample;
}

}  // namespace Quoril::Core
