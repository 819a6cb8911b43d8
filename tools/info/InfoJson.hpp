#pragma once

#include "sensorfile/Kivra2Calib.hpp"
#include "tools/recording/CalibSource.hpp"
#include "tools/recording/RecordingInfo.hpp"

#include <string>
#include <vector>

namespace SensorFileTool {

/// What is in a file, as a JSON object on one line. Matrices are lists of rows; numbers that are
/// not finite, and row counts above 2^53, are text.
[[nodiscard]] std::string recordingToJson(const Recording& recording, const RowCount& count,
                                          const std::vector<MeasuredRate>& rates);
[[nodiscard]] std::string kivra2CalibToJson(const std::string& path,
                                            const SensorFile::Kivra2Calib& calib);

/// Calibration records alone, wherever they come from.
[[nodiscard]] std::string calibToJson(const std::string& name, const CalibSource& calib);

}  // namespace SensorFileTool
