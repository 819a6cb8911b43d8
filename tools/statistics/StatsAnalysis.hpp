#pragma once

#include "tools/common/Progress.hpp"
#include "tools/recording/Calibration.hpp"
#include "tools/recording/Recording.hpp"
#include "tools/recording/RowRange.hpp"
#include "tools/statistics/StatsReport.hpp"

#include <cstddef>
#include <optional>
#include <vector>

namespace SensorFileTool {

/// What statistics are made of.
struct StatsSources {
    RowRange range;
    std::vector<std::size_t> columns;
    std::vector<std::size_t> allan;  ///< columns
    double rate = 0.0;               ///< of the Allan deviations, Hz
};

/// Reads a recording, which stands at its first row, once.
/// @param calibration  applied to the rows, if there is one
[[nodiscard]] StatsReport analyzeRows(Recording& recording, const StatsSources& sources,
                                      std::optional<Calibration>& calibration, Progress& progress);

}  // namespace SensorFileTool
