#include "tools/import/CsvNumber.hpp"

#include "sensorfile/NumberText.hpp"

#include <algorithm>
#include <array>
#include <charconv>
#include <limits>
#include <string>

namespace SensorFileTool {

namespace {

using Kind = CsvNumber::Kind;

constexpr std::uint64_t kTen = 10;
// Any number of so many digits fits 64 bits.
constexpr std::ptrdiff_t kSafeDigits = 19;

bool isDigit(char c) {
    return c >= '0' && c <= '9';
}

const char* skipDigits(const char* at, const char* last) {
    while (at != last && isDigit(*at))
        ++at;
    return at;
}

/// @param word  in lower case
bool isWord(std::string_view text, std::string_view word) {
    return std::equal(text.begin(), text.end(), word.begin(), word.end(), [](char one, char other) {
        return (one >= 'A' && one <= 'Z' ? one - 'A' + 'a' : one) == other;
    });
}

bool isNan(std::string_view text) {
    return isWord(text, "nan");
}

bool isInfinity(std::string_view text) {
    return isWord(text, "inf") || isWord(text, "infinity");
}

std::string_view withoutSign(std::string_view text) {
    if (!text.empty() && (text.front() == '-' || text.front() == '+')) text.remove_prefix(1);
    return text;
}

CsvNumber scanWord(std::string_view text) {
    CsvNumber number;
    const std::string_view word = withoutSign(text);
    number.kind = isNan(word) || isInfinity(word)                 ? Kind::kReal
                  : isWord(text, "true") || isWord(text, "false") ? Kind::kWord
                                                                  : Kind::kText;
    number.magnitude = isWord(text, "true") ? 1 : 0;
    return number;
}

/// Reads an exponent that ends the text; false if there is none. One beyond a double's is as large
/// as that.
bool readExponent(const char* at, const char* last, int& exponent) {
    constexpr int kMaxExponent = 400;
    if (at == last || (*at != 'e' && *at != 'E')) return false;
    ++at;
    const bool isNegative = at != last && *at == '-';
    if (at != last && (*at == '-' || *at == '+')) ++at;
    if (at == last || skipDigits(at, last) != last) return false;
    int size = kMaxExponent;
    if (std::from_chars(at, last, size).ec != std::errc{}) size = kMaxExponent;
    size = std::min(size, kMaxExponent);
    exponent = isNegative ? -size : size;
    return true;
}

/// @param digits  the number's digits, without sign
CsvNumber integerOf(std::string_view digits, bool isNegative, std::uint64_t magnitude) {
    CsvNumber number;
    const char* const last = digits.data() + digits.size();
    const bool isSafe = last - digits.data() <= kSafeDigits;
    const bool fits = isSafe || std::from_chars(digits.data(), last, magnitude).ec == std::errc{};
    const bool isMinusZero = isNegative && magnitude == 0;
    number.kind = fits && !isMinusZero ? Kind::kInteger : Kind::kReal;
    number.isNegative = isNegative;
    number.magnitude = magnitude;
    return number;
}

/// A number with a decimal point in place of the comma, in room for it.
class PointText {
 public:
    /// @return false if it has a point already
    bool assign(std::string_view text) {
        if (text.find('.') != std::string_view::npos) return false;
        char* room = room_.data();
        if (text.size() > room_.size()) {
            long_.resize(text.size());
            room = long_.data();
        }
        std::replace_copy(text.begin(), text.end(), room, ',', '.');
        text_ = {room, text.size()};
        return true;
    }
    [[nodiscard]] std::string_view get() const { return text_; }

 private:
    // Nearly all numbers are shorter.
    static constexpr std::size_t kMostText = 64;

    std::array<char, kMostText> room_;
    std::string long_;
    std::string_view text_;
};

template <typename T>
bool readSpecial(std::string_view text, T& value) {
    const std::string_view word = withoutSign(text);
    if (isNan(word)) {
        value = std::numeric_limits<T>::quiet_NaN();
    } else if (isInfinity(word)) {
        value = std::numeric_limits<T>::infinity();
    } else if (isWord(text, "true") || isWord(text, "false")) {
        value = isWord(text, "true") ? T{1} : T{0};
    } else {
        return false;
    }
    if (text.front() == '-') value = -value;
    return true;
}

template <typename T, typename Parse>
bool readReal(std::string_view text, const CsvNumberStyle& style, Parse parse, T& value) {
    if (style.hasDecimalComma) {
        PointText point;
        return point.assign(text) && readReal(point.get(), {}, parse, value);
    }
    const char* const last = text.data() + text.size();
    const auto result = parse(text.data(), last, value);
    if (result.ptr == last && result.ec == std::errc{} && !text.empty()) return true;
    return result.ec != std::errc::result_out_of_range && readSpecial(text, value);
}

}  // namespace

CsvNumber scanNumber(std::string_view text, const CsvNumberStyle& style) {
    CsvNumber number;
    if (text.empty()) return number;
    const std::string_view unsignedText = withoutSign(text);
    const char* const first = unsignedText.data();
    const char* const last = first + unsignedText.size();
    const char* at = first;
    std::uint64_t magnitude = 0;
    for (; at != last && isDigit(*at); ++at)
        magnitude = magnitude * kTen + static_cast<std::uint64_t>(*at - '0');
    if (at == last && at != first) return integerOf(unsignedText, text.front() == '-', magnitude);
    std::ptrdiff_t digitCount = at - first;
    if (at != last && *at == (style.hasDecimalComma ? ',' : '.')) {
        const char* const fraction = ++at;
        at = skipDigits(at, last);
        number.decimals = static_cast<int>(at - fraction);
        digitCount += at - fraction;
    }
    if (digitCount == 0) return scanWord(text);
    int exponent = 0;
    number.kind = at == last || readExponent(at, last, exponent) ? Kind::kReal : Kind::kText;
    number.decimals = std::max(number.decimals - exponent, 0);
    return number;
}

bool readDouble(std::string_view text, const CsvNumberStyle& style, double& value) {
    return readReal(text, style, SensorFile::parseDouble, value);
}

bool readFloat(std::string_view text, const CsvNumberStyle& style, float& value) {
    return readReal(text, style, SensorFile::parseFloat, value);
}

}  // namespace SensorFileTool
