#include "tools/RecordingInfo.hpp"

#include "sensorfile/ColumnType.hpp"
#include "tools/RowReader.hpp"

#include <cmath>
#include <fstream>
#include <locale>

#include <Poco/String.h>
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

RowCount countTextRows(Recording& recording) {
    SensorFile::SensorFileReader& reader = recording.getReader();
    std::vector<double> row(recording.getConfig().getColumnCount());
    RowCount count;
    reader.rewind();
    count.rest.offset = recording.getDataStart();
    if (!row.empty()) {
        while (reader.readRow(row)) {
            ++count.rows;
            count.rest.offset = reader.position();
        }
    }
    count.rest.offset = skipBlanks(recording, count.rest.offset);
    count.rest.size = recording.getSize() - count.rest.offset;
    if (count.rest.size > 0) count.rest.valueCount = countRestValues(recording, count.rows);
    return count;
}

bool isTimeColumn(const SensorFile::Column& column) {
    const int type = column.getTypeCode();
    if (type != SensorFile::kDouble && type != SensorFile::kFloat) return false;
    for (const char* name : {"TIME", "TIMESTAMP", "T"})
        if (Poco::icompare(column.getName(), name) == 0) return true;
    return false;
}

bool hasTimeColumn(const SensorFile::SensorFileConfig& config) {
    for (std::size_t i = 0; i < config.getColumnCount(); ++i)
        if (isTimeColumn(config.getColumn(i))) return true;
    return false;
}

void readLast(Recording& recording, std::uint64_t rows, std::vector<double>& row) {
    SensorFile::SensorFileReader& reader = recording.getReader();
    if (recording.isBinary())
        reader.seekRow(rows - 1);
    else
        skipRows(recording, rows - 1);
    reader.readRow(row);
}

}  // namespace

std::string Rest::describe() const {
    return fmt::format("{} byte(s) from offset {} on are no whole row ({} whole value(s))", size,
                       offset, valueCount);
}

RowCount countRows(Recording& recording) {
    return recording.isBinary() ? countBinaryRows(recording) : countTextRows(recording);
}

std::vector<MeasuredRate> measureRates(Recording& recording, const RowCount& count) {
    std::vector<MeasuredRate> rates;
    const SensorFile::SensorFileConfig& config = recording.getConfig();
    if (count.rows < 2) return rates;
    if (!hasTimeColumn(config)) return rates;
    std::vector<double> first(config.getColumnCount());
    std::vector<double> last(config.getColumnCount());
    recording.getReader().rewind();
    recording.getReader().readRow(first);
    readLast(recording, count.rows, last);
    for (std::size_t i = 0; i < config.getColumnCount(); ++i) {
        const double hertz = static_cast<double>(count.rows - 1) / (last[i] - first[i]);
        if (isTimeColumn(config.getColumn(i)) && hertz > 0.0 && std::isfinite(hertz))
            rates.push_back({config.getColumn(i).getName(), hertz, first[i], last[i]});
    }
    return rates;
}

}  // namespace SensorFileTool
