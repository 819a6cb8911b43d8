#pragma once

#include "tools/recording/Recording.hpp"

#include <cstdint>

namespace SensorFileTool {

/// Where rows are in a recording's file.
struct RowBytes {
    std::int64_t begin = 0;  ///< of the first row's first byte, from the start of the file
    std::int64_t end = 0;    ///< behind the last row; in text behind its last value
    std::uint64_t rows = 0;
};

/// Goes over the next rows of a recording, from where it stands on: in a text file by reading them.
/// @param count  rows to go over; fewer if the recording ends before
/// @throws Poco::FileException (or one derived) naming the path
[[nodiscard]] RowBytes passRows(Recording& recording, std::uint64_t count);

}  // namespace SensorFileTool
