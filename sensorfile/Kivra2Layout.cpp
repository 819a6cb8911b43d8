#include "sensorfile/Kivra2Layout.hpp"

#include "sensorfile/ColumnType.hpp"
#include "sensorfile/SensorFileConfig.hpp"

#include <string>
#include <vector>

namespace SensorFile::Kivra2 {

namespace {

struct Types {
    int count;
    int axis;
    int info;
};

constexpr Types kTypes{kUInt16, kInt16, kUInt8};
// Older files name the counter and the axes by the types of the C language and hold a flag in INFO.
constexpr Types kOldTypes{kUShort, kShort, kBool};

struct NamedType {
    std::string name;
    int typeCode;
};

std::vector<NamedType> columnsOf(bool hasGyro, const Types& types) {
    std::vector<NamedType> columns{{kCountColumn, types.count}};
    const auto append = [&](const auto& names) {
        for (const char* name : names)
            columns.push_back({name, types.axis});
    };
    append(kAccColumns);
    append(kMagColumns);
    if (hasGyro) append(kGyrColumns);
    columns.push_back({kInfoColumn, types.info});
    return columns;
}

bool isCalibCount(std::size_t count) {
    return count == 0 || count == 4 || count == 6;
}

}  // namespace

void addColumns(SensorFileConfig& config) {
    for (const NamedType& column : columnsOf(/*hasGyro=*/false, kTypes))
        config.addColumn(column.name, column.typeCode);
}

void addGyroColumns(SensorFileConfig& config) {
    if (config.getColumnCount() != kPlainColumnCount) return;
    config.removeColumn(kInfoColumn);
    for (const char* name : kGyrColumns)
        config.addColumn(name, kTypes.axis);
    config.addColumn(kInfoColumn, kTypes.info);
}

void removeGyroColumns(SensorFileConfig& config) {
    if (config.getColumnCount() == kPlainColumnCount) return;
    for (const char* name : kGyrColumns)
        config.removeColumn(name);
}

bool isLayout(const SensorFileConfig& config) {
    const std::size_t count = config.getColumnCount();
    if (count != kPlainColumnCount && count != kGyroColumnCount) return false;
    if (!isCalibCount(config.getCalibCount())) return false;
    const Types& types = config.getCalibFormat() >= kCalibFormat ? kTypes : kOldTypes;
    const std::vector<NamedType> columns = columnsOf(count == kGyroColumnCount, types);
    for (std::size_t i = 0; i < count; ++i) {
        const Column& column = config.getColumn(i);
        if (column.getName() != columns[i].name || column.getTypeCode() != columns[i].typeCode)
            return false;
    }
    return true;
}

bool hasGyro(const SensorFileConfig& config) {
    return config.getColumnCount() == kGyroColumnCount;
}

}  // namespace SensorFile::Kivra2
