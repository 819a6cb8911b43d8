#include "sensorfile/TextRowCodec.hpp"

#include "sensorfile/ColumnType.hpp"
#include "sensorfile/NumberText.hpp"
#include "sensorfile/SensorFileConfig.hpp"
#include "sensorfile/ValueCast.hpp"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <cstdint>
#include <system_error>

#include <Poco/Exception.h>

namespace SensorFile {
namespace {

constexpr int kNoColumns = 0;
/// A sign, the digits of the largest double and the point.
constexpr std::size_t kMaxIntegerText = 1 + 309 + 1;

char* formatNumber(char* out, double value, int precision) {
    if (precision <= kMaxPrecision || !std::isfinite(value)) {
        return formatFixed(out, value, precision, /*trimZeros=*/true);
    }
    const std::size_t room = kMaxIntegerText + static_cast<std::size_t>(precision);
    char* end = std::to_chars(out, out + room, value, std::chars_format::fixed, precision).ptr;
    while (end[-1] == '0')
        --end;
    return end[-1] == '.' ? end - 1 : end;
}

template <typename Integer>
char* formatInteger(char* out, Integer value) {
    return std::to_chars(out, out + kMaxNumberText, value).ptr;
}

bool isBlank(char c) {
    return c == ' ' || (c >= '\t' && c <= '\r');
}

/// The number at `first` if a blank follows it; nullptr otherwise.
const char* closedBy(std::from_chars_result result, const char* last) {
    const bool isWhole = result.ec == std::errc{} && result.ptr != last && isBlank(*result.ptr);
    return isWhole ? result.ptr : nullptr;
}

template <typename Integer>
const char* parseWhole(const char* first, const char* last, double& value) {
    Integer number{};
    const char* const end = closedBy(parseInteger(first, last, number), last);
    value = static_cast<double>(number);
    return end;
}

const char* parseWholeFloat(const char* first, const char* last, double& value) {
    float number = 0;
    const char* const end = closedBy(parseFloat(first, last, number), last);
    value = static_cast<double>(number);
    return end;
}

/// Of a bool the text is "0" or "1" alone.
const char* parseWholeBool(const char* first, const char* last, double& value) {
    if (last - first < 2 || (*first != '0' && *first != '1') || !isBlank(first[1])) return nullptr;
    value = *first == '1' ? 1.0 : 0.0;
    return first + 1;
}

const char* parseValue(int typeCode, const char* first, const char* last, double& value) {
    switch (typeCode) {
        case kUChar:
            value = static_cast<double>(static_cast<unsigned char>(*first));
            return first + 1;
        case kChar:
            value = static_cast<double>(static_cast<signed char>(*first));
            return first + 1;
        case kUShort:
        case kUInt16:
            return parseWhole<std::uint16_t>(first, last, value);
        case kShort:
        case kInt16:
            return parseWhole<std::int16_t>(first, last, value);
        case kUInt8:  // written as a number, read as a wider one
        case kUInt32:
            return parseWhole<std::uint32_t>(first, last, value);
        case kInt8:
        case kInt32:
            return parseWhole<std::int32_t>(first, last, value);
        case kUInt64:
            return parseWhole<std::uint64_t>(first, last, value);
        case kInt64:
            return parseWhole<std::int64_t>(first, last, value);
        case kFloat:
            return parseWholeFloat(first, last, value);
        case kDouble:
            return closedBy(parseDouble(first, last, value), last);
        default:
            return parseWholeBool(first, last, value);
    }
}

}  // namespace

TextRowCodec::TextRowCodec() : typeCodes_{kNoColumns}, maxValueSize_(kMaxNumberText) {}

TextRowCodec::TextRowCodec(const SensorFileConfig& config)
    : precision_(std::min(config.getDoublePrecision(), kMaxDecimals)),  // zeros are trimmed anyway
      maxValueSize_(std::max(kMaxNumberText,
                             kMaxIntegerText + static_cast<std::size_t>(std::max(precision_, 0)))) {
    for (std::size_t i = 0; i < config.getColumnCount(); ++i) {
        typeCodes_.push_back(config.getColumn(i).getTypeCode());
    }
    if (typeCodes_.empty()) typeCodes_.push_back(kNoColumns);
}

template <typename T>
char* TextRowCodec::format(std::size_t column, T value, char* out) const {
    switch (typeCodes_[column]) {
        case kUChar:
            *out = static_cast<char>(fitCast<unsigned char>(value));
            return out + 1;
        case kChar:
            *out = static_cast<char>(fitCast<signed char>(value));
            return out + 1;
        case kUShort:
        case kUInt16:
            return formatInteger(out, fitCast<std::uint16_t>(value));
        case kShort:
        case kInt16:
            return formatInteger(out, fitCast<std::int16_t>(value));
        case kUInt32:
            return formatInteger(out, fitCast<std::uint32_t>(value));
        case kInt32:
            return formatInteger(out, fitCast<std::int32_t>(value));
        case kUInt64:
            return formatInteger(out, fitCast<std::uint64_t>(value));
        case kInt64:
            return formatInteger(out, fitCast<std::int64_t>(value));
        case kUInt8:  // 8-bit numbers wrap, so that "uint8" columns always hold a number
            return formatInteger(out, static_cast<unsigned>(lowBits(value) & 0xff));
        case kInt8:
            return formatInteger(out, int{static_cast<std::int8_t>(lowBits(value) & 0xff)});
        case kFloat:
            return formatNumber(out, double{fitCast<float>(value)}, precision_);
        case kDouble:
            return formatNumber(out, fitCast<double>(value), precision_);
        case kBool:
            *out = fitCast<bool>(value) ? '1' : '0';
            return out + 1;
        default:
            throw Poco::InvalidAccessException("The file has no columns.");
    }
}

template char* TextRowCodec::format(std::size_t, double, char*) const;
template char* TextRowCodec::format(std::size_t, float, char*) const;
template char* TextRowCodec::format(std::size_t, std::int64_t, char*) const;
template char* TextRowCodec::format(std::size_t, std::uint64_t, char*) const;

char* TextRowCodec::formatValues(std::size_t first, std::span<const double> values,
                                 char* out) const {
    const int* typeCode = typeCodes_.data() + first;
    for (const double value : values) {
        out =
            *typeCode == kDouble ? formatNumber(out, value, precision_) : format(first, value, out);
        *out++ = '\t';
        ++typeCode;
        ++first;
    }
    return out;
}

const char* TextRowCodec::parse(const char* first, const char* last, double* row,
                                std::size_t& column) const noexcept {
    for (; column < typeCodes_.size(); ++column) {
        const char* p = first;
        while (p != last && isBlank(*p))
            ++p;
        if (p == last) return first;
        double value = 0;
        const char* const end = parseValue(typeCodes_[column], p, last, value);
        if (end == nullptr) return first;
        row[column] = value;
        first = end;
    }
    return first;
}

}  // namespace SensorFile
