#pragma once

#include "sensorfile/Kivra2Calib.hpp"
#include "tools/recording/CalibSource.hpp"
#include "tools/recording/RecordingInfo.hpp"

#include <string>
#include <vector>

namespace SensorFileTool {

/// What is in a file, for a human reader; ends with a line end.
[[nodiscard]] std::string recordingToText(const Recording& recording, const RowCount& count,
                                          const std::vector<MeasuredRate>& rates);
[[nodiscard]] std::string kivra2CalibToText(const std::string& path,
                                            const SensorFile::Kivra2Calib& calib);

/// Calibration records alone, wherever they come from.
[[nodiscard]] std::string calibToText(const std::string& name, const CalibSource& calib);

}  // namespace SensorFileTool
