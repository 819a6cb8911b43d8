#include "tools/import/ColumnGuess.hpp"

#include "sensorfile/ColumnType.hpp"

#include <algorithm>

namespace SensorFileTool {

namespace {

using Kind = CsvNumber::Kind;

constexpr std::uint64_t kMaxInt32 = 0x7fffffff;
constexpr std::uint64_t kMaxInt64 = 0x7fffffffffffffff;
// Up to here, doubles hold all integers.
constexpr std::uint64_t kExactIntegers = std::uint64_t{1} << 53U;

}  // namespace

void ColumnGuess::add(std::string_view cell, const CsvNumberStyle& style, std::uint64_t line) {
    const CsvNumber number = scanNumber(cell, style);
    switch (number.kind) {
        case Kind::kBlank:
            hasBlank_ = true;
            break;
        case Kind::kInteger:
            addInteger(number);
            break;
        case Kind::kReal:
            hasReal_ = true;
            decimals_ = std::max(decimals_, number.decimals);
            break;
        case Kind::kWord:
            hasWord_ = true;
            largest_ = std::max(largest_, number.magnitude);
            break;
        case Kind::kText:
            if (textLine_ > 0) break;
            textLine_ = line;
            text_ = cell.substr(0, 64);
            break;
    }
}

void ColumnGuess::addInteger(const CsvNumber& number) {
    hasInteger_ = true;
    std::uint64_t& bound = number.isNegative ? mostNegative_ : largest_;
    bound = std::max(bound, number.magnitude);
}

int ColumnGuess::getTypeCode() const {
    if (hasReal_ || hasBlank_ || !hasNumber()) return SensorFile::kDouble;
    if (!hasInteger_) return SensorFile::kBool;
    if (largest_ <= kMaxInt32 && mostNegative_ <= kMaxInt32 + 1) return SensorFile::kInt32;
    if (largest_ <= kMaxInt64 && mostNegative_ <= kMaxInt64 + 1) return SensorFile::kInt64;
    return mostNegative_ == 0 ? SensorFile::kUInt64 : SensorFile::kDouble;
}

bool ColumnGuess::isRounded() const {
    return getTypeCode() == SensorFile::kDouble &&
           std::max(largest_, mostNegative_) > kExactIntegers;
}

}  // namespace SensorFileTool
