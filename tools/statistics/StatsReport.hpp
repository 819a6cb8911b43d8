#pragma once

#include "tools/statistics/AllanNoise.hpp"
#include "tools/statistics/ColumnStatistics.hpp"

#include <cstdint>
#include <string>
#include <vector>

namespace SensorFileTool {

/// The Allan deviation of a column.
struct AllanReport {
    std::string column;
    std::uint64_t leftOut = 0;  ///< values that are not finite
    std::vector<AllanPoint> points;
    AllanNoise noise;
};

/// What the rows of a recording are like.
struct StatsReport {
    std::string path;
    std::uint64_t firstRow = 0;
    std::uint64_t rows = 0;
    bool isCalibrated = false;
    bool isToTheEnd = false;  ///< the rows ended before the range did
    double rate = 0.0;        ///< of the Allan deviations, Hz
    std::vector<ColumnSummary> columns;
    Row least;  ///< finite values of the columns
    Row greatest;
    Row first;  ///< values of any kind; empty without rows
    Row last;
    std::vector<AllanReport> allan;
};

/// For a human reader; ends with a line end.
[[nodiscard]] std::string statsToText(const StatsReport& report);
/// A JSON object on one line.
[[nodiscard]] std::string statsToJson(const StatsReport& report);

}  // namespace SensorFileTool
