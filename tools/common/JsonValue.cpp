#include "tools/common/JsonValue.hpp"

#include "sensorfile/ColumnType.hpp"
#include "sensorfile/NumberText.hpp"
#include "tools/recording/ValueText.hpp"

#include <cstdint>
#include <string>

namespace SensorFileTool {

namespace {

Json shortestFloat(const std::string& text) {
    double value = 0.0;
    SensorFile::parseDouble(text.data(), text.data() + text.size(), value);
    return value;
}

}  // namespace

Json jsonValue(const Row& row, std::size_t column) {
    if (!isPlainNumber(row, column)) return valueText(row, column);
    switch (row.getTypeCode(column)) {
        case SensorFile::kFloat:
            return shortestFloat(valueText(row, column));
        case SensorFile::kDouble:
            return row.getValue(column);
        default:
            return static_cast<std::int64_t>(row.getValue(column));
    }
}

}  // namespace SensorFileTool
