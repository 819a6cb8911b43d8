#pragma once

#include "tools/check/FileCheck.hpp"
#include "tools/common/Json.hpp"

#include <string>

namespace SensorFileTool {

/// What was found, for a human reader: a line for the file and one for each defect.
[[nodiscard]] std::string checkReportToText(const Console& console, const CheckReport& report);

/// The same as a JSON object on one line.
[[nodiscard]] std::string checkReportToJson(const CheckReport& report);

/// How many there are of each code that was found.
[[nodiscard]] Json defectCountsToJson(const DefectList& defects);

/// What is wrong with a file, in a few words: "1 error, 2 warnings"; empty if nothing is.
[[nodiscard]] std::string countDefects(const DefectList& defects);

}  // namespace SensorFileTool
