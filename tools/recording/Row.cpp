#include "tools/recording/Row.hpp"

#include "sensorfile/ColumnType.hpp"

#include <bit>

namespace SensorFileTool {

Row::Row(const SensorFile::SensorFileConfig& config) {
    for (std::size_t i = 0; i < config.getColumnCount(); ++i) {
        typeCodes_.push_back(config.getColumn(i).getTypeCode());
        hasWide_ = hasWide_ || isWide(i);
    }
    values_.resize(typeCodes_.size());
    bits_.resize(typeCodes_.size());
}

bool Row::isWide(std::size_t column) const {
    return typeCodes_[column] == SensorFile::kUInt64 || typeCodes_[column] == SensorFile::kInt64;
}

void Row::setBits(std::size_t column, std::uint64_t bits) {
    bits_[column] = bits;
    values_[column] = typeCodes_[column] == SensorFile::kInt64
                          ? static_cast<double>(std::bit_cast<std::int64_t>(bits))
                          : static_cast<double>(bits);
}

}  // namespace SensorFileTool
