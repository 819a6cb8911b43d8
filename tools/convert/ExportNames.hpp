#pragma once

#include "sensorfile/SensorFileConfig.hpp"

#include <cstddef>
#include <string>
#include <vector>

namespace SensorFileTool {

/// Sensor files know names as bytes, which may repeat: these make names of them that other formats
/// can hold.

[[nodiscard]] std::vector<std::string> columnNames(const SensorFile::SensorFileConfig& config);

/// A name without control characters, in UTF-8: what is not already is taken for Latin-1. Empty
/// names become "unnamed".
[[nodiscard]] std::string plainName(const std::string& name);

/// A name of letters, digits and underscores that begins with a letter, is no word of MATLAB's
/// language and not too long for it.
[[nodiscard]] std::string matlabName(const std::string& name);

/// Puts "_2", "_3"... behind names that came before or are taken already.
/// @param maxLength  in bytes; 0: any. Longer names are cut where something is put behind them
[[nodiscard]] std::vector<std::string> uniqueNames(const std::vector<std::string>& names,
                                                   const std::vector<std::string>& taken = {},
                                                   std::size_t maxLength = 0);

}  // namespace SensorFileTool
