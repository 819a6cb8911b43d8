#pragma once

#include "tools/common/Progress.hpp"
#include "tools/recording/CounterColumn.hpp"
#include "tools/recording/Recording.hpp"
#include "tools/recording/TimeColumn.hpp"
#include "tools/statistics/TimeReport.hpp"

#include <optional>
#include <vector>

namespace SensorFileTool {

/// What a report on a recording's time looks at.
struct TimeSources {
    std::optional<TimeColumn> time;
    std::vector<CounterColumn> counters;
    double nominal = 0.0;    ///< Hz
    double gapFactor = 0.0;  ///< of the median step
};

/// Reads a recording, which stands at its first row, from end to end: up to three times.
[[nodiscard]] TimeReport analyzeTime(Recording& recording, const TimeSources& sources,
                                     Progress& progress);

}  // namespace SensorFileTool
