#include "tools/recording/ValueText.hpp"

#include "sensorfile/ColumnType.hpp"
#include "sensorfile/DigitGroups.hpp"
#include "sensorfile/NumberText.hpp"

#include <array>
#include <bit>
#include <charconv>
#include <cmath>
#include <cstdint>

namespace SensorFileTool {

namespace {

// Up to here, doubles hold all integers.
constexpr std::uint64_t kExactIntegers = std::uint64_t{1} << 53;

template <typename T>
char* format(char* out, T value) {
    return std::to_chars(out, out + kMaxValueText, value).ptr;
}

char* formatNan(char* out) {
    for (const char letter : {'n', 'a', 'n'})
        *out++ = letter;
    return out;
}

}  // namespace

char* formatValue(char* out, const Row& row, std::size_t column) {
    const double value = row.getValue(column);
    switch (row.getTypeCode(column)) {
        case SensorFile::kUInt64:
            return format(out, row.getBits(column));
        case SensorFile::kInt64:
            return format(out, std::bit_cast<std::int64_t>(row.getBits(column)));
        case SensorFile::kDouble:
            // The sign of what is no number tells nobody anything.
            return std::isnan(value) ? formatNan(out) : SensorFile::formatShortest(out, value);
        case SensorFile::kFloat:
            return std::isnan(value) ? formatNan(out)
                                     : SensorFile::formatShortest(out, static_cast<float>(value));
        default:
            return SensorFile::formatShortInteger(out, static_cast<std::int64_t>(value));
    }
}

std::string valueText(const Row& row, std::size_t column) {
    std::array<char, kMaxValueText> room;
    return {room.data(), formatValue(room.data(), row, column)};
}

bool isPlainNumber(const Row& row, std::size_t column) {
    // The double of an integer just above would be rounded down to it.
    const int type = row.getTypeCode(column);
    const bool isNegative = type == SensorFile::kInt64 && row.getValue(column) < 0.0;
    if (type == SensorFile::kUInt64 || type == SensorFile::kInt64)
        return (isNegative ? 0U - row.getBits(column) : row.getBits(column)) <= kExactIntegers;
    return std::isfinite(row.getValue(column));
}

}  // namespace SensorFileTool
