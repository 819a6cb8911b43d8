#pragma once

#include <string>

namespace SensorFileTool {

/// A part of a whole as a user writes it: "0.001" or "0.1%".
/// @param option  for the message, e.g. "--lose"
/// @throws UsageException if it is no number from 0 to 1
[[nodiscard]] double parseShare(const std::string& option, const std::string& text);

}  // namespace SensorFileTool
