#include "tools/recording/RecordingInfo.hpp"

#include "tools/recording/CounterColumn.hpp"
#include "tools/recording/TimeColumn.hpp"

#include <algorithm>
#include <cmath>
#include <fstream>
#include <locale>

#include <fmt/format.h>

namespace SensorFileTool {

namespace {

RowCount countBinaryRows(const Recording& recording) {
    const auto rowSize = static_cast<std::int64_t>(recording.getRowSize());
    const std::int64_t bytes = recording.getSize() - recording.getDataStart();
    RowCount count;
    count.rest.offset = recording.getDataStart();
    count.rest.size = bytes;
    if (rowSize == 0) return count;
    count.rows = static_cast<std::uint64_t>(bytes / rowSize);
    count.rest.size = bytes % rowSize;
    count.rest.offset = recording.getSize() - count.rest.size;
    auto left = static_cast<std::size_t>(count.rest.size);
    const SensorFile::SensorFileConfig& config = recording.getConfig();
    for (std::size_t i = 0; left >= config.getColumn(i).getSize(); ++i) {
        left -= config.getColumn(i).getSize();
        ++count.rest.valueCount;
    }
    return count;
}

/// Tabs and line ends behind the last row are no rest of it.
std::int64_t skipBlanks(const Recording& recording, std::int64_t offset) {
    std::ifstream stream(recording.getPath(), std::ios::binary);
    stream.imbue(std::locale::classic());
    stream.seekg(offset);
    stream >> std::ws;
    return stream.eof() ? recording.getSize() : static_cast<std::int64_t>(stream.tellg());
}

void skipRows(Recording& recording, std::uint64_t rows) {
    std::vector<double> row(recording.getConfig().getColumnCount());
    recording.getReader().rewind();
    for (std::uint64_t i = 0; i < rows; ++i)
        recording.getReader().readRow(row);
}

/// Reads to the row's end, since a row that was begun could not be read as a whole again.
std::uint64_t countRestValues(Recording& recording, std::uint64_t rows) {
    skipRows(recording, rows);
    std::uint64_t count = 0;
    for (std::size_t i = 0; i < recording.getConfig().getColumnCount(); ++i) {
        double value = 0.0;
        recording.getReader().read(&value, 1);
        if (!recording.getReader().isEof()) ++count;
    }
    return count;
}

Rest findTextRest(Recording& recording, std::uint64_t rows, std::int64_t end) {
    Rest rest;
    rest.offset = skipBlanks(recording, end);
    rest.size = recording.getSize() - rest.offset;
    if (rest.size > 0) rest.valueCount = countRestValues(recording, rows);
    return rest;
}

/// Keeps the last row by changing places with it.
RowCount countTextRows(Recording& recording) {
    recording.getReader().rewind();
    RowCount count;
    count.rest.offset = recording.getDataStart();
    RowReader rows(recording);
    while (rows.next()) {
        if (count.rows++ == 0) count.first = rows.row();
        rows.exchangeRow(count.last);
        count.rest.offset = recording.getReader().position();
    }
    count.rest = findTextRest(recording, count.rows, count.rest.offset);
    return count;
}

void readEnds(Recording& recording, RowCount& count) {
    if (count.rows == 0) return;
    RowReader rows(recording);
    recording.getReader().seekRow(0);
    rows.next();
    count.first = rows.row();
    recording.getReader().seekRow(count.rows - 1);
    rows.next();
    count.last = rows.row();
}

bool isRate(double hertz) {
    return hertz > 0.0 && std::isfinite(hertz);
}

void addRateByTime(const SensorFile::SensorFileConfig& config, const RowCount& count,
                   TimeColumn time, std::vector<MeasuredRate>& rates) {
    const auto steps = static_cast<double>(count.rows - 1);
    time.guessUnit(time.secondsBetween(count.first, count.last) / time.secondsPerUnit / steps,
                   config.getSampleFrequency(), count.first);
    MeasuredRate rate;
    rate.column = time.name;
    rate.hertz = steps / time.secondsBetween(count.first, count.last);
    rate.firstStamp = time.secondsOf(count.first);
    rate.lastStamp = time.secondsOf(count.last);
    if (isRate(rate.hertz)) rates.push_back(rate);
}

void addRateByCounter(const SensorFile::SensorFileConfig& config, const RowCount& count,
                      const CounterColumn& counter, std::vector<MeasuredRate>& rates) {
    const std::uint64_t span =
        counter.distanceBetween(counter.numberOf(count.first), counter.numberOf(count.last));
    const CounterColumn::Step step = counter.stepBetween(count.rows - 1, span + 1);
    if (step.isBackward || step.isRepeated) return;  // rows are repeated, or it counts otherwise
    MeasuredRate rate;
    rate.column = counter.name;
    rate.isByCounter = true;
    rate.missing = step.missing;
    const auto rows = static_cast<double>(count.rows - 1);
    rate.hertz = config.getSampleFrequency() * rows / (rows + static_cast<double>(rate.missing));
    if (isRate(rate.hertz)) rates.push_back(rate);
}

}  // namespace

std::string Rest::describe() const {
    return fmt::format("{} byte(s) from offset {} on are no whole row ({} whole value(s))", size,
                       offset, valueCount);
}

Rest findRest(Recording& recording, std::uint64_t rows, std::int64_t end) {
    return recording.isBinary() ? countBinaryRows(recording).rest
                                : findTextRest(recording, rows, end);
}

RowCount countRows(Recording& recording) {
    if (!recording.isBinary()) return countTextRows(recording);
    RowCount count = countBinaryRows(recording);
    readEnds(recording, count);
    return count;
}

std::uint64_t skipToRow(std::uint64_t row, Recording& recording, RowReader& rows) {
    if (recording.isBinary()) {
        const std::uint64_t target = std::min(row, countBinaryRows(recording).rows);
        recording.getReader().seekRow(target);
        return target;
    }
    std::uint64_t skipped = 0;
    while (skipped < row && rows.next())
        ++skipped;
    return skipped;
}

std::vector<MeasuredRate> measureRates(const SensorFile::SensorFileConfig& config,
                                       const RowCount& count) {
    std::vector<MeasuredRate> rates;
    if (count.rows < 2) return rates;
    for (const TimeColumn& time : findTimeColumns(config))
        addRateByTime(config, count, time, rates);
    for (const CounterColumn& counter : findCounterColumns(config))
        addRateByCounter(config, count, counter, rates);
    return rates;
}

}  // namespace SensorFileTool
