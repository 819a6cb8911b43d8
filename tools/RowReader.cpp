#include "tools/RowReader.hpp"

#include "sensorfile/ColumnType.hpp"

#include <algorithm>
#include <bit>

namespace SensorFileTool {

RowReader::RowReader(Recording& recording) : reader_(recording.getReader()) {
    const SensorFile::SensorFileConfig& config = recording.getConfig();
    for (std::size_t i = 0; i < config.getColumnCount(); ++i)
        types_.push_back(config.getColumn(i).getTypeCode());
    values_.resize(types_.size());
    bits_.resize(types_.size());
    hasWideColumns_ = std::any_of(types_.begin(), types_.end(), [](int type) {
        return type == SensorFile::kUInt64 || type == SensorFile::kInt64;
    });
}

bool RowReader::next() {
    return hasWideColumns_ ? nextByValue() : reader_.readRow(values_);
}

/// To the row's end even behind the file's: a row that was begun could not be read as a whole
/// again.
bool RowReader::nextByValue() {
    for (std::size_t i = 0; i < types_.size(); ++i) {
        if (types_[i] == SensorFile::kUInt64) {
            bits_[i] = reader_.readUInt64();
            values_[i] = static_cast<double>(bits_[i]);
        } else if (types_[i] == SensorFile::kInt64) {
            const std::int64_t value = reader_.readInt64();
            bits_[i] = std::bit_cast<std::uint64_t>(value);
            values_[i] = static_cast<double>(value);
        } else {
            reader_.read(&values_[i], 1);
        }
    }
    return !reader_.isEof();
}

}  // namespace SensorFileTool
