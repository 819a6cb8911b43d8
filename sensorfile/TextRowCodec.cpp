#include "sensorfile/TextRowCodec.hpp"

#include "sensorfile/ColumnType.hpp"
#include "sensorfile/DigitGroups.hpp"
#include "sensorfile/NumberText.hpp"
#include "sensorfile/SensorFileConfig.hpp"
#include "sensorfile/ValueCast.hpp"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <cstdint>
#include <limits>
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

/// An integer of a few digits that a TAB follows, as all are that a writer wrote: the whole is in
/// one load. nullptr otherwise. No branch depends on the sign or on the number of digits, which
/// cannot be foreseen.
const char* parseShort(const char* first, const char* last, std::int64_t& value) {
    if (last - first < 8) return nullptr;
    const std::uint64_t characters = loadLittleEndian(first);
    const int sign = (characters & 0xff) == '-' ? 1 : 0;
    const std::uint64_t digits = digitsOf(characters >> (8 * sign));
    const int count = countDigits(digits);
    const auto magnitude = static_cast<std::int64_t>(joinDigits(digits, count));
    value = (magnitude ^ -sign) + sign;
    const char* const end = first + sign + count;
    return count > 0 && sign + count < 8 && *end == '\t' ? end : nullptr;
}

template <typename Integer>
const char* parseWhole(const char* first, const char* last, double& value) {
    Integer number{};
    const char* const end = closedBy(parseInteger(first, last, number), last);
    value = static_cast<double>(number);
    return end;
}

template <typename Integer>
const char* parseWide(const char* first, const char* last, double& value, std::uint64_t* bits) {
    Integer number{};
    const char* const end = closedBy(parseInteger(first, last, number), last);
    value = static_cast<double>(number);
    if (bits != nullptr) *bits = static_cast<std::uint64_t>(number);
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

const char* parseValue(int typeCode, const char* first, const char* last, double& value,
                       std::uint64_t* bits) {
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
            return parseWide<std::uint64_t>(first, last, value, bits);
        case kInt64:
            return parseWide<std::int64_t>(first, last, value, bits);
        case kFloat:
            return parseWholeFloat(first, last, value);
        case kDouble:
            return closedBy(parseDouble(first, last, value), last);
        default:
            return parseWholeBool(first, last, value);
    }
}

}  // namespace

TextRowCodec::TextRowCodec() : typeCodes_{kNoColumns}, ranges_(1), maxValueSize_(kMaxNumberText) {}

TextRowCodec::TextRowCodec(const SensorFileConfig& config)
    : precision_(std::min(config.getDoublePrecision(), kMaxDecimals)),  // zeros are trimmed anyway
      maxValueSize_(std::max(kMaxNumberText,
                             kMaxIntegerText + static_cast<std::size_t>(std::max(precision_, 0)))) {
    for (std::size_t i = 0; i < config.getColumnCount(); ++i) {
        typeCodes_.push_back(config.getColumn(i).getTypeCode());
    }
    if (typeCodes_.empty()) typeCodes_.push_back(kNoColumns);
    for (const int typeCode : typeCodes_)
        ranges_.push_back(rangeOf(typeCode));
}

TextRowCodec::Range TextRowCodec::rangeOf(int typeCode) {
    const auto limitsOf = [](auto zero) {
        using Limits = std::numeric_limits<decltype(zero)>;
        return Range{Limits::lowest(), Limits::max()};
    };
    switch (typeCode) {
        case kUInt8:
            return limitsOf(std::uint8_t{});
        case kInt8:
            return limitsOf(std::int8_t{});
        case kUShort:
        case kUInt16:
            return limitsOf(std::uint16_t{});
        case kShort:
        case kInt16:
            return limitsOf(std::int16_t{});
        case kUInt32:
            return limitsOf(std::uint32_t{});
        case kInt32:
            return limitsOf(std::int32_t{});
        default:
            return {};
    }
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
                                 const std::uint64_t* bits, char* out) const {
    const int* typeCode = typeCodes_.data() + first;
    for (const double value : values) {
        if (*typeCode == kDouble) {
            out = formatNumber(out, value, precision_);
        } else if (ranges_[first].holds(value)) {
            out = formatShortInteger(out, static_cast<std::int64_t>(value));
        } else if (bits != nullptr && *typeCode == kUInt64) {
            out = formatInteger(out, bits[first]);
        } else if (bits != nullptr && *typeCode == kInt64) {
            out = formatInteger(out, static_cast<std::int64_t>(bits[first]));
        } else {
            out = format(first, value, out);
        }
        *out++ = '\t';
        ++typeCode;
        ++first;
    }
    return out;
}

/// Takes neighbouring columns of short integers, as far as they are what they mostly are. On its
/// own, so that the loop is a tight one.
const char* TextRowCodec::parseShorts(const char* first, const char* last, double* row,
                                      std::size_t& column) const noexcept {
    const Range* range = ranges_.data() + column;
    const Range* const end = ranges_.data() + ranges_.size();
    for (; range != end && !range->isEmpty(); ++range) {
        const char* p = first;
        while (p != last && isBlank(*p))
            ++p;
        std::int64_t value = 0;
        p = parseShort(p, last, value);
        if (p == nullptr || !range->holds(value)) break;
        row[column++] = static_cast<double>(value);
        first = p;
    }
    return first;
}

const char* TextRowCodec::parse(const char* first, const char* last, double* row,
                                std::uint64_t* bits, std::size_t& column) const noexcept {
    for (; column < typeCodes_.size(); ++column) {
        if (!ranges_[column].isEmpty()) {
            first = parseShorts(first, last, row, column);
            if (column == typeCodes_.size()) break;
        }
        const char* p = first;
        while (p != last && isBlank(*p))
            ++p;
        if (p == last) return first;
        double value = 0;
        const char* const end = parseValue(typeCodes_[column], p, last, value,
                                           bits == nullptr ? nullptr : bits + column);
        if (end == nullptr) return first;
        row[column] = value;
        first = end;
    }
    return first;
}

}  // namespace SensorFile
