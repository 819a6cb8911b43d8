#include "tools/recording/TypeOption.hpp"

#include "sensorfile/ColumnType.hpp"

#include <algorithm>
#include <array>

#include <Poco/Exception.h>

namespace SensorFileTool {

namespace {

struct NamedType {
    const char* name;
    int code;
};

constexpr std::array kTypes = {
    NamedType{"BOOL", SensorFile::kBool},     NamedType{"INT8", SensorFile::kInt8},
    NamedType{"UINT8", SensorFile::kUInt8},   NamedType{"INT16", SensorFile::kInt16},
    NamedType{"UINT16", SensorFile::kUInt16}, NamedType{"INT32", SensorFile::kInt32},
    NamedType{"UINT32", SensorFile::kUInt32}, NamedType{"INT64", SensorFile::kInt64},
    NamedType{"UINT64", SensorFile::kUInt64}, NamedType{"FLOAT", SensorFile::kFloat},
    NamedType{"DOUBLE", SensorFile::kDouble}, NamedType{"CHAR", SensorFile::kChar},
    NamedType{"UCHAR", SensorFile::kUChar},   NamedType{"SHORT", SensorFile::kShort},
    NamedType{"USHORT", SensorFile::kUShort}};

}  // namespace

std::optional<int> findColumnType(const std::string& name) {
    for (const NamedType& type : kTypes)
        if (name == type.name) return type.code;
    try {
        return SensorFile::columnTypeFromName(name);
    } catch (const Poco::DataException&) {
        return std::nullopt;
    }
}

std::string upperTypeName(int typeCode) {
    const auto* const found =
        std::find_if(kTypes.begin(), kTypes.end(),
                     [typeCode](const NamedType& type) { return type.code == typeCode; });
    return found == kTypes.end() ? SensorFile::columnTypeName(typeCode) : found->name;
}

std::string listColumnTypes() {
    std::string names;
    for (const NamedType& type : kTypes)
        names += (names.empty() ? "" : ", ") + std::string(type.name);
    return names;
}

}  // namespace SensorFileTool
