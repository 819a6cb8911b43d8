#pragma once

#include "tools/statistics/TimeLimits.hpp"
#include "tools/statistics/TimeReport.hpp"

#include <string>
#include <vector>

namespace SensorFileTool {

/// For a human reader; ends with a line end.
[[nodiscard]] std::string timeToText(const TimeReport& report,
                                     const std::vector<Violation>& violations);
/// A JSON object on one line.
[[nodiscard]] std::string timeToJson(const TimeReport& report,
                                     const std::vector<Violation>& violations);

}  // namespace SensorFileTool
