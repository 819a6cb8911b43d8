#pragma once

#include "sensorfile/SensorFileConfig.hpp"

#include <string>

namespace SensorFileTool {

/// The first difference between the columns of two files, as "column 3 is ACCY (int16) there, MAGX
/// (int16) here"; empty if they have the same names and types in the same order.
[[nodiscard]] std::string findColumnDifference(const SensorFile::SensorFileConfig& one,
                                               const SensorFile::SensorFileConfig& other);
/// The first difference between frequencies and calibration records; empty if there is none. Dates
/// and versions do not count.
[[nodiscard]] std::string findSetupDifference(const SensorFile::SensorFileConfig& one,
                                              const SensorFile::SensorFileConfig& other);

}  // namespace SensorFileTool
