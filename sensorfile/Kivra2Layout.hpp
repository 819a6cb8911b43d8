#pragma once

#include <array>
#include <cstddef>

namespace SensorFile {

class SensorFileConfig;

/// The columns and calibration records of a recording of one Kivra2 inertial unit: a sensor file
/// in the binary encoding with a fixed layout.
///
///     COUNT  ACCX ACCY ACCZ  MAGX MAGY MAGZ  [GYRX GYRY GYRZ]  INFO
///
/// COUNT is a 16-bit frame counter, the axes are raw counts of the unit's converters (a record of
/// gains and offsets turns them into physical values), INFO holds the unit's buttons.
namespace Kivra2 {

inline constexpr std::size_t kPlainColumnCount = 8;
inline constexpr std::size_t kGyroColumnCount = 11;

inline constexpr std::array kAccColumns{"ACCX", "ACCY", "ACCZ"};
inline constexpr std::array kMagColumns{"MAGX", "MAGY", "MAGZ"};
inline constexpr std::array kGyrColumns{"GYRX", "GYRY", "GYRZ"};
inline constexpr const char* kCountColumn = "COUNT";
inline constexpr const char* kInfoColumn = "INFO";

/// Names of the calibration records: gains are 3 x 3, offsets 1 x 3.
inline constexpr const char* kAccGain = "AccGain";
inline constexpr const char* kAccOffset = "AccOffset";
inline constexpr const char* kMagGain = "MagGain";
inline constexpr const char* kMagOffset = "MagOffset";
inline constexpr const char* kGyrGain = "GyrGain";
inline constexpr const char* kGyrOffset = "GyrOffset";

/// Files of this calibration format or a later one have columns of the types that addColumns()
/// gives; earlier ones have types of the same sizes under other codes.
inline constexpr int kCalibFormat = 2;

/// Adds the eight columns of a unit without gyroscope.
void addColumns(SensorFileConfig& config);
/// Puts the gyroscope's columns before INFO, if there are exactly eight columns.
void addGyroColumns(SensorFileConfig& config);
/// Takes the gyroscope's columns away, unless there are exactly eight columns.
void removeGyroColumns(SensorFileConfig& config);

/// Whether a configuration has the names and types of the layout, those of older files included,
/// and 0, 4 or 6 calibration records. The records' names and contents do not matter.
[[nodiscard]] bool isLayout(const SensorFileConfig& config);
/// Whether a configuration of the layout has the gyroscope's columns.
[[nodiscard]] bool hasGyro(const SensorFileConfig& config);

}  // namespace Kivra2
}  // namespace SensorFile
