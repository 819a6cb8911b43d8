#include "tools/check/FixedDigits.hpp"

#include <algorithm>
#include <cmath>

#include <fmt/format.h>

namespace SensorFileTool {

namespace {

constexpr int kFewDigits = 3;

/// Digits before and behind the point, without leading zeros.
int digitsOf(double value, std::size_t decimals) {
    if (value == 0.0) return 0;
    return std::max(
        0, static_cast<int>(std::floor(std::log10(value))) + 1 + static_cast<int>(decimals));
}

}  // namespace

void FixedDigits::take(std::size_t index, std::string_view text, double value, const Place& place) {
    Column& column = columns_[index];
    ++column.count;
    for (std::size_t i = 0; i < text.size(); ++i) {
        if (text[i] == '.') column.decimals = std::max(column.decimals, text.size() - i - 1);
        if (text[i] == 'e' || text[i] == 'E') column.hasExponent = true;
    }
    column.largest = std::max(column.largest, std::abs(value));
    const bool isNegativeZero = value == 0.0 && std::signbit(value);
    if (value == 0.0) ++column.zeros;
    const bool isFirst = isNegativeZero ? !column.hasNegativeZero
                                        : value != 0.0 && !column.isUsed && !column.hasNegativeZero;
    if (isFirst) column.firstLost = place;
    column.hasNegativeZero |= isNegativeZero;
    column.isUsed |= value != 0.0;
}

bool FixedDigits::isLost(const Column& column, std::size_t decimals) const {
    if (column.hasExponent || digitsOf(column.largest, decimals) > kFewDigits) return false;
    if (column.hasNegativeZero) return true;
    return column.isUsed && column.decimals == decimals &&
           decimals >= std::size_t{SensorFile::kDefaultDoublePrecision};
}

void FixedDigits::tell(const SensorFile::SensorFileConfig& config, DefectList& defects) const {
    std::size_t decimals = 0;
    for (const Column& column : columns_)
        if (!column.hasExponent) decimals = std::max(decimals, column.decimals);
    for (std::size_t i = 0; i < columns_.size(); ++i) {
        const Column& column = columns_[i];
        if (!isLost(column, decimals)) continue;
        defects.add(DefectCode::kDigitsLost, column.firstLost, config.getColumn(i).getName(), [&] {
            return fmt::format(
                "{} decimals keep {} digit(s) of the largest value, {:.6g}; {} of {} value(s) are "
                "written as 0",
                decimals, digitsOf(column.largest, decimals), column.largest, column.zeros,
                column.count);
        });
    }
}

}  // namespace SensorFileTool
