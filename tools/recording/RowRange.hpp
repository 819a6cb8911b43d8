#pragma once

#include <cstdint>
#include <limits>
#include <string>

namespace SensorFileTool {

/// Rows first to last - 1, counted from 0.
struct RowRange {
    std::uint64_t first = 0;
    std::uint64_t last = std::numeric_limits<std::uint64_t>::max();
};

/// Reads "100:200", "100:" or ":200" of the option --rows.
/// @throws UsageException telling what is expected
[[nodiscard]] RowRange parseRowRange(const std::string& text);

}  // namespace SensorFileTool
