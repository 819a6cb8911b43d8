#pragma once

#include "tools/check/Recovery.hpp"

#include <string>

namespace SensorFileTool {

/// What was kept, dropped and mended, and how the new file is, for a human reader.
[[nodiscard]] std::string recoveryToText(const Console& console, const Recovery& recovery);

/// The same as a JSON object on one line.
[[nodiscard]] std::string recoveryToJson(const Recovery& recovery);

}  // namespace SensorFileTool
