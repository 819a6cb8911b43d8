#pragma once

#include "sensorfile/SensorFileConfig.hpp"

#include <cstddef>
#include <string>
#include <vector>

namespace SensorFileTool {

/// Columns that share a panel of a plot.
struct PlotPanel {
    std::string title;
    std::vector<std::size_t> columns;  ///< indexes
};

/// Columns whose names differ in their last letter alone, X, Y, Z or W in either case, or in the
/// number at their end, share a panel with the rest of their name as its title; a unit in brackets
/// may follow. So ACCX, ACCY, ACCZ are "ACC" and "Gyroscope X (deg/s)" and its like are
/// "Gyroscope (deg/s)". Every other column has a panel of its own. Panels come in the order of
/// their first columns, but those that only accompany measurements (counters, stamps, states,
/// columns of true and false or of characters) come last.
/// @param columns  indexes of those to be shown
[[nodiscard]] std::vector<PlotPanel> groupColumns(const SensorFile::SensorFileConfig& config,
                                                  const std::vector<std::size_t>& columns);

}  // namespace SensorFileTool
