#pragma once

#include "sensorfile/SensorFileConfig.hpp"

#include <cstddef>
#include <string>
#include <vector>

namespace SensorFileTool {

/// The indexes of the columns that a list of patterns names, in the list's order, each once. In a
/// pattern "*" stands for any characters and "?" for one. All columns if the list is empty.
/// @param patterns  e.g. "ACC*,COUNT"
/// @param option  that the patterns were given for
/// @throws UsageException "--columns: ..." naming a pattern that no column matches, and the columns
[[nodiscard]] std::vector<std::size_t> chooseColumns(const SensorFile::SensorFileConfig& config,
                                                     const std::string& patterns,
                                                     const char* option = "--columns");

}  // namespace SensorFileTool
