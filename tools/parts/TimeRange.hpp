#pragma once

#include "tools/recording/Recording.hpp"
#include "tools/recording/RowRange.hpp"
#include "tools/recording/TimeColumn.hpp"

#include <limits>
#include <optional>
#include <string>

namespace SensorFileTool {

/// Seconds from the first row on, the end not included.
struct TimeRange {
    double first = 0.0;
    double last = std::numeric_limits<double>::infinity();
};

/// Reads "10:20", "1.5:" or ":20" of the option --seconds.
/// @throws UsageException telling what is expected
[[nodiscard]] TimeRange parseTimeRange(const std::string& text);

/// The rows from the first at or behind the range's beginning to the one before the first at or
/// behind its end.
/// @param time  the column of stamps, read up to there; without one the header's frequency tells
///        the time of each row
/// @throws Poco::DataException naming the file, if the header has no frequency then
/// @throws Poco::FileException (or one derived) naming the path
[[nodiscard]] RowRange findRowsOfTime(Recording& recording, std::optional<TimeColumn> time,
                                      const TimeRange& range);

}  // namespace SensorFileTool
