#pragma once

#include "sensorfile/SensorFileConfig.hpp"

#include <cstddef>
#include <string>
#include <vector>

namespace SensorFileTool {

/// A recording's header and calibration for a file of some of its columns. Calibrations of old
/// versions, whose values had no names, become those of the present one with the names that they
/// were given in reading; a date that is missing is that of the recording.
/// @param columns  indexes of the source's columns
/// @param types  a type code for each column of the source
[[nodiscard]] SensorFile::SensorFileConfig convertedConfig(
    const SensorFile::SensorFileConfig& source, const std::vector<std::size_t>& columns,
    const std::vector<int>& types);

/// The same columns under other names.
[[nodiscard]] SensorFile::SensorFileConfig renamedConfig(const SensorFile::SensorFileConfig& source,
                                                         const std::vector<std::string>& names);

/// What the reader of a file finds otherwise than its maker meant it.
struct HeaderChange {
    std::string place;  ///< e.g. "calibration record AccGain, row 0, column 1"
    std::string before;
    std::string after;
};

/// Compares the sections of sensor files.
[[nodiscard]] std::vector<HeaderChange> compareHeaders(const SensorFile::SensorFileConfig& meant,
                                                       const SensorFile::SensorFileConfig& found);

}  // namespace SensorFileTool
