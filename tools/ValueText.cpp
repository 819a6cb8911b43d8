#include "tools/ValueText.hpp"

#include "sensorfile/ColumnType.hpp"

#include <array>
#include <bit>
#include <charconv>
#include <cmath>
#include <cstdint>

namespace SensorFileTool {

namespace {

// Up to here, doubles hold all integers.
constexpr std::uint64_t kExactIntegers = std::uint64_t{1} << 53;
// Longer than the shortest text of any double.
constexpr std::size_t kTextRoom = 32;

template <typename T>
void append(std::string& text, T value) {
    std::array<char, kTextRoom> room;
    const auto result = std::to_chars(room.data(), room.data() + room.size(), value);
    text.append(room.data(), result.ptr);
}

}  // namespace

void appendValue(std::string& text, const RowReader& rows, std::size_t column) {
    const double value = rows.getValue(column);
    switch (rows.getTypeCode(column)) {
        case SensorFile::kUInt64:
            append(text, rows.getBits(column));
            break;
        case SensorFile::kInt64:
            append(text, std::bit_cast<std::int64_t>(rows.getBits(column)));
            break;
        case SensorFile::kDouble:
        case SensorFile::kFloat:
            if (std::isnan(value))
                text += "nan";  // its sign tells nobody anything
            else if (rows.getTypeCode(column) == SensorFile::kFloat)
                append(text, static_cast<float>(value));
            else
                append(text, value);
            break;
        default:
            append(text, static_cast<std::int64_t>(value));
            break;
    }
}

bool isPlainNumber(const RowReader& rows, std::size_t column) {
    // The double of an integer just above would be rounded down to it.
    const int type = rows.getTypeCode(column);
    const bool isNegative = type == SensorFile::kInt64 && rows.getValue(column) < 0.0;
    if (type == SensorFile::kUInt64 || type == SensorFile::kInt64)
        return (isNegative ? 0U - rows.getBits(column) : rows.getBits(column)) <= kExactIntegers;
    return std::isfinite(rows.getValue(column));
}

}  // namespace SensorFileTool
