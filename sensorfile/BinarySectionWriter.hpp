#pragma once

#include <string>

namespace SensorFile {

class SensorFileConfig;

/// The sections of a binary file, big-endian. Layout: docs/file-format.md.
/// @throws Poco::RangeException if there are more than 65,535 columns
std::string binaryHeaderSection(const SensorFileConfig& config);
/// @throws Poco::DataException "Data format is not supported!" for elements not double or int
/// @throws Poco::RangeException if a matrix has more than 255 rows or columns
std::string binaryCalibSection(const SensorFileConfig& config);
std::string binaryDataSection(const SensorFileConfig& config);

}  // namespace SensorFile
