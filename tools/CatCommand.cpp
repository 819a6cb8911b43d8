#include "tools/CatCommand.hpp"

#include "tools/ColumnChoice.hpp"
#include "tools/ExitCode.hpp"
#include "tools/OutputCheck.hpp"
#include "tools/RecordingInfo.hpp"
#include "tools/RowReader.hpp"

#include <algorithm>
#include <cstdint>
#include <ostream>

#include <Poco/Exception.h>
#include <fmt/format.h>

namespace SensorFileTool {

namespace {

// Rows are handed on in pieces of this size.
constexpr std::size_t kPieceSize = std::size_t{256} * 1024;

void hand(std::string& text, std::ostream& output) {
    output.write(text.data(), static_cast<std::streamsize>(text.size()));
    requireGood(output);
    text.clear();
}

/// Rows of a binary file need no reading to be skipped.
std::uint64_t skipTo(std::uint64_t first, Recording& recording, RowReader& rows) {
    if (recording.isBinary()) {
        const std::uint64_t target = std::min(first, countRows(recording).rows);
        recording.getReader().seekRow(target);
        return target;
    }
    std::uint64_t row = 0;
    while (row < first && rows.next())
        ++row;
    return row;
}

}  // namespace

int cat(const CatOptions& options, std::ostream& output, std::ostream& errors) {
    Recording recording(options.path, options.encoding);
    if (recording.getConfig().isCalibOnly())
        throw Poco::DataException(options.path + ": a file of calibrations, which has no rows");
    const RowText format(options.format, recording.getConfig(),
                         chooseColumns(recording.getConfig(), options.columns));
    std::string text;
    if (options.hasHeader) format.appendHeader(text);
    RowReader rows(recording);
    std::uint64_t row = skipTo(options.rows.first, recording, rows);
    bool isCut = false;
    for (; row < options.rows.last; ++row) {
        isCut = !rows.next();
        if (isCut) break;
        format.appendRow(text, rows);
        if (text.size() >= kPieceSize) hand(text, output);
    }
    hand(text, output);
    if (!isCut) return kExitDone;
    const Rest rest = findRest(recording);
    if (rest.size == 0) return kExitDone;
    errors << fmt::format("sensorfile: {}: {}\n", options.path, rest.describe());
    return kExitProblems;
}

}  // namespace SensorFileTool
