#pragma once

#include "tools/check/DefectList.hpp"
#include "tools/recording/CalibRecords.hpp"

#include <cstdint>

namespace SensorFileTool {

/// Looks for values that are not finite, and for square matrices named as gains that cannot be
/// inverted: they make several different readings one.
void checkRecord(const CalibRecord& record, std::int64_t offset, DefectList& defects);

/// Looks at the calibration of a Kivra2 unit: its size, its date and its records.
/// @throws Poco::FileException (or one derived) naming the path
void checkKivra2Calib(const std::string& path, DefectList& defects);

}  // namespace SensorFileTool
