#pragma once

/// The pins by which a Kivra2 unit, its recordings and its calibrations are exchanged:
/// what one filter sends, the others take. Samples are raw counts.
namespace Kivra2Pins {

inline constexpr const char* kAcc = "3a";           ///< accelerometer, 3 elements
inline constexpr const char* kAccGain = "3aGain";   ///< 3 x 3
inline constexpr const char* kAccOffset = "3aOff";  ///< 1 x 3
inline constexpr const char* kMag = "3m";           ///< magnetometer, as the accelerometer
inline constexpr const char* kMagGain = "3mGain";
inline constexpr const char* kMagOffset = "3mOff";
inline constexpr const char* kGyr = "3g";  ///< gyroscope, likewise
inline constexpr const char* kGyrGain = "3gGain";
inline constexpr const char* kGyrOffset = "3gOff";
/// 1 x 3: frame counter, share of lost frames (0 to 1), sample frequency in Hz.
inline constexpr const char* kFrameNumber = "FrameNumber";
inline constexpr const char* kButton = "Button";  ///< 1 x 1: the bits of the buttons

/// Samples that calibration pins keep: the newest matrix counts.
inline constexpr unsigned kCalibBuffer = 1;

}  // namespace Kivra2Pins
