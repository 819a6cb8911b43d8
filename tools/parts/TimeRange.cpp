#include "tools/parts/TimeRange.hpp"

#include "tools/common/UsageException.hpp"
#include "tools/recording/RecordingInfo.hpp"
#include "tools/recording/RowReader.hpp"

#include <charconv>
#include <cmath>
#include <string_view>

#include <Poco/Exception.h>

namespace SensorFileTool {

namespace {

bool parse(std::string_view text, double& number) {
    if (text.empty()) return true;
    const char* const end = text.data() + text.size();
    const auto result = std::from_chars(text.data(), end, number);
    return result.ec == std::errc() && result.ptr == end && number >= 0.0;
}

RowRange findByFrequency(const Recording& recording, const TimeRange& range) {
    const double frequency = recording.getConfig().getSampleFrequency();
    if (!(frequency > 0.0) || !std::isfinite(frequency))
        throw Poco::DataException(recording.getName() +
                                  ": neither a column nor the header tells the time of its rows");
    // The first row at or behind a time; times beyond all rows are the range's default.
    const auto rowAt = [frequency](double seconds, std::uint64_t otherwise) {
        const double row = std::ceil(seconds * frequency - 1e-9);
        return row < 0x1p63 ? static_cast<std::uint64_t>(std::max(row, 0.0)) : otherwise;
    };
    const RowRange all;
    return {rowAt(range.first, all.last), rowAt(range.last, all.last)};
}

/// Unit of the stamps, for which the whole recording is looked at.
void completeUnit(Recording& recording, TimeColumn& time) {
    if (time.isUnitKnown) return;
    const RowCount count = countRows(recording);
    if (count.rows < 2) return;
    time.guessUnit(time.secondsBetween(count.first, count.last) / time.secondsPerUnit /
                       static_cast<double>(count.rows - 1),
                   recording.getConfig().getSampleFrequency(), count.first);
}

}  // namespace

TimeRange parseTimeRange(const std::string& text) {
    TimeRange range;
    const std::string_view view = text;
    const std::size_t colon = view.find(':');
    if (colon == std::string_view::npos || !parse(view.substr(0, colon), range.first) ||
        !parse(view.substr(colon + 1), range.last) || range.first > range.last)
        throw UsageException("--seconds: '" + text +
                             "' is no range of seconds such as 1.5:20 or 10:");
    return range;
}

RowRange findRowsOfTime(Recording& recording, std::optional<TimeColumn> time,
                        const TimeRange& range) {
    if (!time) return findByFrequency(recording, range);
    completeUnit(recording, *time);
    recording.getReader().rewind();
    RowReader rows(recording);
    RowRange found;
    found.first = found.last;
    if (!rows.next()) return {0, 0};
    const Row origin = rows.row();
    std::uint64_t row = 0;
    do {
        const double seconds = time->secondsBetween(origin, rows.row());
        if (seconds >= range.first && row < found.first) found.first = row;
        if (seconds >= range.last) return {std::min(found.first, row), row};
        ++row;
    } while (rows.next());
    return {std::min(found.first, row), row};
}

}  // namespace SensorFileTool
