#include "tools/import/CellReader.hpp"

#include "sensorfile/ColumnType.hpp"
#include "tools/recording/TypeOption.hpp"

#include <cmath>
#include <cstdint>
#include <limits>
#include <utility>

#include <fmt/format.h>

namespace SensorFileTool {

namespace {

using Kind = CsvNumber::Kind;

/// What an integer type holds, as magnitudes.
struct Range {
    std::uint64_t mostNegative = 0;
    std::uint64_t largest = 0;
};

template <typename Integer>
constexpr Range rangeOf() {
    constexpr auto kLargest = static_cast<std::uint64_t>(std::numeric_limits<Integer>::max());
    return {std::numeric_limits<Integer>::is_signed ? kLargest + 1 : 0, kLargest};
}

Range rangeOf(int typeCode) {
    switch (typeCode) {
        case SensorFile::kBool:
            return {0, 1};
        case SensorFile::kChar:
        case SensorFile::kInt8:
            return rangeOf<std::int8_t>();
        case SensorFile::kUChar:
        case SensorFile::kUInt8:
            return rangeOf<std::uint8_t>();
        case SensorFile::kShort:
        case SensorFile::kInt16:
            return rangeOf<std::int16_t>();
        case SensorFile::kUShort:
        case SensorFile::kUInt16:
            return rangeOf<std::uint16_t>();
        case SensorFile::kInt32:
            return rangeOf<std::int32_t>();
        case SensorFile::kUInt32:
            return rangeOf<std::uint32_t>();
        case SensorFile::kInt64:
            return rangeOf<std::int64_t>();
        default:
            return rangeOf<std::uint64_t>();
    }
}

/// A whole number that is written with a point or an exponent; those beyond 2^53 may have been
/// rounded already.
bool toInteger(double value, CsvNumber& number) {
    constexpr double kExactIntegers = 9007199254740992.0;
    if (!(std::abs(value) <= kExactIntegers) || std::trunc(value) != value) return false;
    number.isNegative = value < 0.0;
    number.magnitude = static_cast<std::uint64_t>(std::abs(value));
    return true;
}

}  // namespace

CellReader::CellReader(std::vector<ImportColumn> columns, CsvNumberStyle style, std::string blank)
    : columns_(std::move(columns)), style_(style), blank_(std::move(blank)) {}

std::optional<CsvDefect> CellReader::read(const std::vector<std::string_view>& cells,
                                          Row& row) const {
    for (std::size_t i = 0; i < columns_.size(); ++i) {
        const std::string_view cell = cells[columns_[i].cell];
        const std::string_view text = cell.empty() ? std::string_view(blank_) : cell;
        if (!readCell(text, *columns_[i].typeCode, row, i))
            return CsvDefect{columns_[i].cell, explain(text, *columns_[i].typeCode)};
    }
    return std::nullopt;
}

bool CellReader::readCell(std::string_view text, int typeCode, Row& row, std::size_t column) const {
    if (typeCode == SensorFile::kDouble) {
        double value = std::numeric_limits<double>::quiet_NaN();
        if (!text.empty() && !readDouble(text, style_, value)) return false;
        row.setValue(column, value);
        return true;
    }
    if (typeCode == SensorFile::kFloat) {
        float value = std::numeric_limits<float>::quiet_NaN();
        if (!text.empty() && !readFloat(text, style_, value)) return false;
        row.setValue(column, static_cast<double>(value));
        return true;
    }
    return readInteger(text, typeCode, row, column);
}

bool CellReader::readInteger(std::string_view text, int typeCode, Row& row,
                             std::size_t column) const {
    CsvNumber number = scanNumber(text, style_);
    double value = 0.0;
    if (number.kind == Kind::kReal &&
        (!readDouble(text, style_, value) || !toInteger(value, number)))
        return false;
    if (number.kind == Kind::kText || number.kind == Kind::kBlank) return false;
    const Range range = rangeOf(typeCode);
    if (number.magnitude > (number.isNegative ? range.mostNegative : range.largest)) return false;
    const std::uint64_t bits = number.isNegative ? 0 - number.magnitude : number.magnitude;
    if (row.isWide(column)) {
        row.setBits(column, bits);
    } else {
        const auto size = static_cast<double>(number.magnitude);
        row.setValue(column, number.isNegative ? -size : size);
    }
    return true;
}

std::string CellReader::explain(std::string_view text, int typeCode) const {
    const std::string type = upperTypeName(typeCode);
    if (text.empty()) return "blank, and " + type + " has no nan; --blank says what to put there";
    if (scanNumber(text, style_).kind != Kind::kText)
        return fmt::format("{} does not fit {}", quoteText(text), type);
    return explainText(text, style_);
}

}  // namespace SensorFileTool
