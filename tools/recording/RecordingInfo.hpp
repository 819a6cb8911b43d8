#pragma once

#include "tools/recording/Recording.hpp"
#include "tools/recording/RowReader.hpp"

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace SensorFileTool {

/// What follows the last whole row of a recording.
struct Rest {
    std::int64_t offset = 0;       ///< of its first byte, from the start of the file
    std::int64_t size = 0;         ///< bytes; 0: the file ends with a whole row
    std::uint64_t valueCount = 0;  ///< whole values in a row that was cut

    /// A sentence for the user.
    [[nodiscard]] std::string describe() const;
};

/// Rows counted, in a text file by reading them all.
struct RowCount {
    std::uint64_t rows = 0;
    Row first;  ///< if there are rows
    Row last;
    Rest rest;
};

/// Reads a recording from its first row on. The recording stands somewhere afterwards.
/// @throws Poco::FileException (or one derived) naming the path
[[nodiscard]] RowCount countRows(Recording& recording);
[[nodiscard]] inline Rest findRest(Recording& recording) {
    return countRows(recording).rest;
}

/// The same without reading all rows again.
/// @param rows  that the recording has
/// @param end  offset behind the last of them
[[nodiscard]] Rest findRest(Recording& recording, std::uint64_t rows, std::int64_t end);

/// Goes to a row counted from 0, or to the end if there are fewer: without reading the others in a
/// binary file. The reader stands before it.
/// @param rows  of the recording, which stands before its first row
/// @return the number of the row
std::uint64_t skipToRow(std::uint64_t row, Recording& recording, RowReader& rows);

/// Rows per second, by the first and the last row.
struct MeasuredRate {
    std::string column;
    double hertz = 0.0;
    /// By a column of time stamps, which may also tell when the first row was: seconds.
    double firstStamp = 0.0;
    double lastStamp = 0.0;
    /// By a counter, which tells of rows that are missing alone: the header's frequency less those.
    bool isByCounter = false;
    std::uint64_t missing = 0;
};

/// By the column of time stamps and each counter, if they grow. Counters begin again at 0, so whole
/// turns of missing rows are not seen.
[[nodiscard]] std::vector<MeasuredRate> measureRates(const SensorFile::SensorFileConfig& config,
                                                     const RowCount& count);

}  // namespace SensorFileTool
