#include "tools/gen/SyntheticMotion.hpp"

#include <cmath>

namespace SensorFileTool {

namespace {

constexpr int kFixedBits = 30;

constexpr double kRollHertz = 0.23;
constexpr double kPitchHertz = 0.31;
constexpr double kYawHertz = 0.05;
// How far roll and pitch swing from rest: 20 and 15 degrees.
constexpr std::int64_t kRollAmplitude = 349066;   // urad
constexpr std::int64_t kPitchAmplitude = 261799;  // urad
// Their largest rates, 2 pi times frequency times amplitude, and that of the turn.
constexpr std::int64_t kRollRate = 504447;   // urad/s
constexpr std::int64_t kPitchRate = 509929;  // urad/s
constexpr std::int64_t kYawRate = 314159;    // urad/s
constexpr std::int64_t kGravity = 9806650;   // um/s^2
// The earth's field in Europe: to the north, and up (it points down).
constexpr std::int64_t kFieldNorth = 20000;  // nT
constexpr std::int64_t kFieldUp = -44000;    // nT

constexpr std::uint32_t kQuarterTurn = std::uint32_t{1} << 30U;

constexpr std::int64_t fixedProduct(std::int64_t a, std::int64_t b) {
    return a * b >> kFixedBits;
}

std::int64_t fixedCosine(std::uint32_t angle) {
    return fixedSine(angle + kQuarterTurn);
}

/// The fraction of a turn as 64 bits.
std::uint64_t toTurn(double turns) {
    constexpr double kTurn = 18446744073709551616.0;  // 2^64
    return static_cast<std::uint64_t>(std::fmod(turns, 1.0) * kTurn);
}

/// @param microradians  up to a turn
std::uint32_t toAngle(std::int64_t microradians) {
    // 2^32 / (2 pi 10^6), in units of 2^-20.
    constexpr std::int64_t kTurnsPerMicroradian = 716770142;
    constexpr int kBits = 20;
    return static_cast<std::uint32_t>(microradians * kTurnsPerMicroradian >> kBits);
}

std::uint32_t topBits(std::uint64_t turn) {
    return static_cast<std::uint32_t>(turn >> 32U);
}

}  // namespace

std::int64_t fixedSine(std::uint32_t angle) {
    // The coefficients of the series of sin(x pi/2), in units of 2^-30.
    constexpr std::array<std::int64_t, 6> kSeries = {1686629713, -693598668, 85569306,
                                                     -5026995,   172272,     -3864};
    const std::uint32_t inQuarter = angle % kQuarterTurn;
    const bool isFalling = (angle & kQuarterTurn) != 0;
    const bool isNegative = angle >= 2 * kQuarterTurn;
    const std::int64_t x = isFalling ? kQuarterTurn - inQuarter : inQuarter;
    const std::int64_t square = fixedProduct(x, x);
    std::int64_t sum = 0;
    for (std::size_t i = kSeries.size(); i-- > 0;)
        sum = kSeries[i] + fixedProduct(sum, square);
    const std::int64_t sine = fixedProduct(sum, x);
    return isNegative ? -sine : sine;
}

SyntheticMotion::SyntheticMotion(double frequency, std::uint64_t phase)
    : roll_{phase, toTurn(kRollHertz / frequency)},
      pitch_{phase * 3, toTurn(kPitchHertz / frequency)},
      yaw_{phase * 5, toTurn(kYawHertz / frequency)} {}

SyntheticMotion::Sample SyntheticMotion::sampleAt(std::uint64_t number) const {
    const std::uint32_t rollPhase = topBits(roll_.start + number * roll_.step);
    const std::uint32_t pitchPhase = topBits(pitch_.start + number * pitch_.step);
    const std::uint32_t yaw = topBits(yaw_.start + number * yaw_.step);
    const std::uint32_t roll = toAngle(fixedProduct(kRollAmplitude, fixedSine(rollPhase)));
    const std::uint32_t pitch = toAngle(fixedProduct(kPitchAmplitude, fixedSine(pitchPhase)));
    const std::int64_t rollRate = fixedProduct(kRollRate, fixedCosine(rollPhase));
    const std::int64_t pitchRate = fixedProduct(kPitchRate, fixedCosine(pitchPhase));

    const std::int64_t sinRoll = fixedSine(roll);
    const std::int64_t cosRoll = fixedCosine(roll);
    const std::int64_t sinPitch = fixedSine(pitch);
    const std::int64_t cosPitch = fixedCosine(pitch);
    const std::int64_t sinYaw = fixedSine(yaw);
    const std::int64_t cosYaw = fixedCosine(yaw);
    // The sensor's axes seen from the world: how far up each points, and how far north.
    const Vector up = {-sinPitch, fixedProduct(cosPitch, sinRoll), fixedProduct(cosPitch, cosRoll)};
    const std::int64_t northPitch = fixedProduct(cosYaw, sinPitch);
    const Vector north = {fixedProduct(cosYaw, cosPitch),
                          fixedProduct(northPitch, sinRoll) - fixedProduct(sinYaw, cosRoll),
                          fixedProduct(northPitch, cosRoll) + fixedProduct(sinYaw, sinRoll)};

    Sample sample;
    for (std::size_t i = 0; i < up.size(); ++i) {
        sample.acceleration[i] = fixedProduct(kGravity, up[i]);
        sample.field[i] = fixedProduct(kFieldNorth, north[i]) + fixedProduct(kFieldUp, up[i]);
        sample.rate[i] = fixedProduct(kYawRate, up[i]);
    }
    sample.rate[0] += rollRate;
    sample.rate[1] += fixedProduct(pitchRate, cosRoll);
    sample.rate[2] -= fixedProduct(pitchRate, sinRoll);
    return sample;
}

}  // namespace SensorFileTool
