#pragma once

#include "tools/Recording.hpp"

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
    Rest rest;
};

/// Reads a recording from its first row on. The recording stands somewhere afterwards.
/// @throws Poco::FileException (or one derived) naming the path
[[nodiscard]] RowCount countRows(Recording& recording);
[[nodiscard]] inline Rest findRest(Recording& recording) {
    return countRows(recording).rest;
}

/// Rows per second by a column of time stamps.
struct MeasuredRate {
    std::string column;
    double hertz = 0.0;
    double firstStamp = 0.0;  ///< seconds
    double lastStamp = 0.0;   ///< seconds
};

/// By the first and the last row, for each floating point column whose name says that it holds
/// seconds ("TIME", "TIMESTAMP", "T", in any case). Nothing for stamps that do not grow.
/// @throws Poco::FileException (or one derived) naming the path
[[nodiscard]] std::vector<MeasuredRate> measureRates(Recording& recording, const RowCount& count);

}  // namespace SensorFileTool
