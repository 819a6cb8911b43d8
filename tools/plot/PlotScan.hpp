#pragma once

#include "tools/plot/PlotRows.hpp"
#include "tools/recording/CounterColumn.hpp"
#include "tools/recording/TimeColumn.hpp"

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace SensorFileTool {

/// Where rows stand on the horizontal axis.
struct PlotAxis {
    std::optional<TimeColumn> time;  ///< nothing: by the rows' numbers
    double unitsPerRow = 1.0;        ///< by the rows' numbers: seconds, or 1 without a frequency
    bool isInSeconds = true;
    /// By stamps: the first row, and where it stands. Stamps that are dates are told from 0 on,
    /// since no axis has room for them.
    Row first;
    double start = 0.0;
    double origin = 0.0;  ///< the stamp, in seconds, that stands at 0
    double step = 0.0;    ///< usual distance of two rows, 0 if not known

    [[nodiscard]] double positionOf(const Row& row, std::uint64_t number) const {
        return time ? start + time->secondsBetween(first, row)
                    : static_cast<double>(number) * unitsPerRow;
    }
};

/// Two rows that follow each other in the recording, but not in time or not in their numbers.
struct PlotGap {
    std::uint64_t row = 0;  ///< the second one, counted from the first that is shown
    double start = 0.0;     ///< positions of both
    double end = 0.0;
    std::uint64_t lost = 0;  ///< rows that are missing between them, as far as is known
};

/// What the first reading of the rows tells.
struct PlotScan {
    std::uint64_t rows = 0;
    PlotAxis axis;
    std::vector<PlotGap> gaps;       ///< in order, the longest if there are many
    bool areGapsComplete = true;     ///< gaps holds them all
    std::uint64_t lost = 0;          ///< at least, unless all gaps are there
    std::string counter;             ///< the column that told of them, empty: the time stamps
    std::vector<std::string> notes;  ///< what the user should know about the axis
};

/// Gaps are marked by these.
struct PlotClues {
    std::optional<TimeColumn> time;
    std::optional<CounterColumn> counter;
};

/// No more gaps are kept than this.
inline constexpr std::size_t kMaxPlotGaps = 1000;

/// Reads all rows. A gap is where stamps step by more than twice their median, or where the counter
/// leaves numbers out or goes back. Stamps that go back or are no numbers make no axis: the rows'
/// numbers do then. A counter that does not mostly step by 1 does not count rows and tells nothing.
/// @throws Poco::FileException (or one derived) naming the path
[[nodiscard]] PlotScan scanRows(PlotRows& rows, const PlotClues& clues);

}  // namespace SensorFileTool
