#pragma once

#include "tools/recording/Row.hpp"

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace SensorFileTool {

/// A column that holds the time of its row, and the unit in which it counts.
struct TimeColumn {
    std::size_t index = 0;
    std::string name;
    double secondsPerUnit = 1.0;
    bool isUnitKnown = false;  ///< by the user or the column's name

    /// Seconds from one row to another, exact for 64-bit integers of any size.
    [[nodiscard]] double secondsBetween(const Row& from, const Row& to) const;
    /// Seconds of a row's stamp itself.
    [[nodiscard]] double secondsOf(const Row& row) const {
        return row.getValue(index) * secondsPerUnit;
    }
    /// "s", "ms", "us" or "ns".
    [[nodiscard]] std::string getUnit() const;
    /// Takes the unit in which the rows come nearest to the frequency, where it is not known.
    /// Floating point numbers are seconds.
    /// @param meanStep  from a row to the next, in units
    /// @param frequency  rows per second that the header states
    void guessUnit(double meanStep, double frequency, const Row& row);
};

/// The columns of numbers whose names say that they hold time: TIME, TIMESTAMP, STAMP or T, in
/// any case, with "_s", "(ms)", "[us]", "_ns" and the like behind it or "update_" in front of it.
[[nodiscard]] std::vector<TimeColumn> findTimeColumns(const SensorFile::SensorFileConfig& config);

/// What the user named.
/// @param name  a column; empty: the first of findTimeColumns()
/// @param unit  "s", "ms", "us", "ns"; empty: by the name
/// @return nothing if no name is given and no column says that it holds time
/// @throws UsageException "--time: ..." if there is no such column or unit
[[nodiscard]] std::optional<TimeColumn> chooseTimeColumn(const SensorFile::SensorFileConfig& config,
                                                         const std::string& name,
                                                         const std::string& unit);

}  // namespace SensorFileTool
