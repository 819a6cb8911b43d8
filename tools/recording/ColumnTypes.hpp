#pragma once

#include "sensorfile/SensorFileConfig.hpp"

#include <string>
#include <vector>

namespace SensorFileTool {

/// The types of all columns, some of them changed by a list as the option --type has it.
/// @param changes  e.g. "ACC*=double,COUNT=uint32", the later ones hold; may be empty
/// @throws UsageException "--type: ..." telling what is wrong with the list
[[nodiscard]] std::vector<int> changeTypes(const SensorFile::SensorFileConfig& config,
                                           const std::string& changes);

}  // namespace SensorFileTool
