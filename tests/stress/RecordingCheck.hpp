#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <utility>
#include <vector>

namespace Stress {

/// A closed recording and what must be in it.
struct ClosedRecording {
    std::string file;
    std::string filter;
    bool isBinary = true;
    std::uint64_t fewestRows = 0;
    std::uint64_t mostRows = UINT64_MAX;
    /// Text columns of single characters lose some values by their nature: no row can be told then.
    bool areRowsReadable = true;
    /// Columns, from the first to behind the last, that got all elements of one sample of a number
    /// source: they are equal in every row.
    std::vector<std::pair<std::size_t, std::size_t>> equalColumns;
    /// Those numbers also grow from row to row.
    bool areNumbersGrowing = false;
};

/// Reads a recording to its end. Anything that is not as it must be is a failure of the program.
/// @return the number of rows
std::uint64_t checkRecording(const ClosedRecording& recording);

/// Bytes of samples in a recording.
[[nodiscard]] std::uint64_t countSampleBytes(const ClosedRecording& recording);

}  // namespace Stress
