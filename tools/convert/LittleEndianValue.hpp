#pragma once

#include "sensorfile/ColumnType.hpp"
#include "sensorfile/ValueCast.hpp"
#include "tools/recording/Row.hpp"

#include <bit>
#include <concepts>
#include <cstddef>
#include <cstdint>

namespace SensorFileTool {

/// Puts the bytes of a number, the low one first.
template <std::unsigned_integral T>
char* putLittleEndian(char* out, T bits) {
    for (std::size_t i = 0; i < sizeof bits; ++i)
        *out++ = static_cast<char>(static_cast<unsigned char>(bits >> (8 * i)));
    return out;
}

/// Puts a value in its column's type, the low byte first.
/// @param out  room for the column's size
/// @return the end of the bytes
inline char* putLittleEndian(char* out, const Row& row, std::size_t column) {
    const double value = row.getValue(column);
    switch (row.getTypeCode(column)) {
        case SensorFile::kUInt64:
        case SensorFile::kInt64:
            return putLittleEndian(out, row.getBits(column));
        case SensorFile::kDouble:
            return putLittleEndian(out, std::bit_cast<std::uint64_t>(value));
        case SensorFile::kFloat:
            return putLittleEndian(out, std::bit_cast<std::uint32_t>(static_cast<float>(value)));
        case SensorFile::kUInt32:
        case SensorFile::kInt32:
            return putLittleEndian(out, static_cast<std::uint32_t>(SensorFile::lowBits(value)));
        case SensorFile::kUShort:
        case SensorFile::kUInt16:
        case SensorFile::kShort:
        case SensorFile::kInt16:
            return putLittleEndian(out, static_cast<std::uint16_t>(SensorFile::lowBits(value)));
        default:
            return putLittleEndian(out, static_cast<std::uint8_t>(SensorFile::lowBits(value)));
    }
}

}  // namespace SensorFileTool
