#include "sensorfile/ColumnType.hpp"

#include <array>

#include <Poco/Exception.h>

namespace SensorFile {
namespace {

struct TypeRow {
    int code;
    int storedCode;
    std::string name;
    std::size_t size;
};

const std::array<TypeRow, 17>& typeTable() {
    static const std::array<TypeRow, 17> kTable = {{
        {kUChar, kUChar, "unsigned char", 1},
        {kChar, kChar, "signed char", 1},
        {kUShort, kUShort, "unsigned short", 2},
        {kShort, kShort, "short", 2},
        {kUInt32, kUInt32, "uint32", 4},
        {kInt32, kInt32, "int32", 4},
        {kFloat, kFloat, "float", 4},
        {kDouble, kDouble, "double", 8},
        {kBool, kBool, "bool", 1},
        {kUInt8, kUInt8, "uint8", 1},
        {kInt8, kInt8, "int8", 1},
        {kUInt16, kUInt16, "uint16", 2},
        {kInt16, kInt16, "int16", 2},
        {kUInt64, kUInt64, "uint64", 8},
        {kInt64, kInt64, "int64", 8},
        {kUInt32Alias, kUInt32, "uint32", 4},
        {kInt32Alias, kInt32, "int32", 4},
    }};
    return kTable;
}

struct Alias {
    std::string_view name;
    ColumnType code;
};

/// "01" and "00" are names like the others: old files hold them.
constexpr std::array<Alias, 40> kAliases = {{
    {"signed char", kChar},
    {"char", kChar},
    {"c", kChar},
    {"unsigned char", kUChar},
    {"uc", kUChar},
    {"short", kShort},
    {"signed short", kShort},
    {"s", kShort},
    {"01", kShort},
    {"unsigned short", kUShort},
    {"us", kUShort},
    {"00", kUShort},
    {"int8", kInt8},
    {"i8", kInt8},
    {"uint8", kUInt8},
    {"unsigned int8", kUInt8},
    {"ui8", kUInt8},
    {"int16", kInt16},
    {"i16", kInt16},
    {"uint16", kUInt16},
    {"unsigned int16", kUInt16},
    {"ui16", kUInt16},
    {"int32", kInt32},
    {"i32", kInt32},
    {"i", kInt32},
    {"uint32", kUInt32},
    {"unsigned int32", kUInt32},
    {"ui32", kUInt32},
    {"ui", kUInt32},
    {"int64", kInt64},
    {"i64", kInt64},
    {"uint64", kUInt64},
    {"unsigned int64", kUInt64},
    {"ui64", kUInt64},
    {"float", kFloat},
    {"f", kFloat},
    {"double", kDouble},
    {"d", kDouble},
    {"bool", kBool},
    {"b", kBool},
}};

[[noreturn]] void throwNotAType() {
    throw Poco::DataException("Column type is not compatible with SensorFile format");
}

const TypeRow& rowOf(int code) {
    if (code < kUChar || code > kInt32Alias) throwNotAType();
    return typeTable()[static_cast<std::size_t>(code - kUChar)];
}

}  // namespace

const std::string& columnTypeName(int code) {
    return rowOf(code).name;
}

int canonicalColumnType(int code) {
    return rowOf(code).storedCode;
}

std::size_t columnTypeSize(int code) {
    return rowOf(code).size;
}

int columnTypeFromName(std::string_view name) {
    for (const Alias& alias : kAliases) {
        if (alias.name == name) return alias.code;
    }
    throwNotAType();
}

std::optional<int> columnTypeFromBinary(unsigned size, unsigned kind) {
    if (kind > 1) return rowOf(static_cast<int>(kind)).code;
    const bool isSigned = kind == 1;
    switch (size) {
        case 1:
            return isSigned ? kInt8 : kUInt8;
        case 2:
            return isSigned ? kInt16 : kUInt16;
        case 4:
            return isSigned ? kInt32 : kUInt32;
        case 8:
            return isSigned ? kInt64 : kUInt64;
        default:
            return std::nullopt;
    }
}

}  // namespace SensorFile
