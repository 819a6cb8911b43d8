#include "tools/parts/RowBytes.hpp"

#include "tools/recording/RowReader.hpp"

#include <algorithm>

namespace SensorFileTool {

namespace {

RowBytes passBinaryRows(Recording& recording, std::uint64_t count) {
    RowBytes bytes;
    bytes.begin = recording.getReader().position();
    bytes.end = bytes.begin;
    const auto rowSize = static_cast<std::int64_t>(recording.getRowSize());
    if (rowSize == 0) return bytes;
    const auto left = static_cast<std::uint64_t>(
        std::max<std::int64_t>(0, (recording.getSize() - bytes.begin) / rowSize));
    bytes.rows = std::min(count, left);
    bytes.end += static_cast<std::int64_t>(bytes.rows) * rowSize;
    recording.getReader().seekRow(
        static_cast<std::uint64_t>((bytes.end - recording.getDataStart()) / rowSize));
    return bytes;
}

RowBytes passTextRows(Recording& recording, std::uint64_t count) {
    RowBytes bytes;
    bytes.begin = recording.getReader().position();
    bytes.end = bytes.begin;
    RowReader rows(recording);
    while (bytes.rows < count && rows.next()) {
        bytes.end = recording.getReader().position();
        ++bytes.rows;
    }
    return bytes;
}

}  // namespace

RowBytes passRows(Recording& recording, std::uint64_t count) {
    return recording.isBinary() ? passBinaryRows(recording, count) : passTextRows(recording, count);
}

}  // namespace SensorFileTool
