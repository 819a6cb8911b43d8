#pragma once

#include <string>

namespace SensorFile {

class SensorFileConfig;

/// The sections of a text file. Layout: docs/file-format.md.
std::string textHeaderSection(const SensorFileConfig& config);
/// @throws Poco::DataException "Data format is not supported!" for elements not double or int
std::string textCalibSection(const SensorFileConfig& config);
std::string textDataSection(const SensorFileConfig& config);

}  // namespace SensorFile
