#include "fuzz/PlainNumber.hpp"

#include <cstdlib>

namespace Fuzz {

namespace {

std::string_view withoutBlanks(std::string_view text) {
    while (!text.empty() && std::string_view(" \t\n\v\f\r").find(text[0]) != std::string_view::npos)
        text.remove_prefix(1);
    return text;
}

std::size_t countDigits(std::string_view text) {
    std::size_t count = 0;
    while (count < text.size() && isDigit(text[count]))
        ++count;
    return count;
}

WholeNumber numberOf(std::string_view digits, bool isNegative) {
    constexpr std::uint64_t kLargest = std::numeric_limits<std::uint64_t>::max();
    WholeNumber number;
    number.isNegative = isNegative;
    for (const char c : digits) {
        const auto digit = static_cast<std::uint64_t>(c - '0');
        if (number.magnitude > (kLargest - digit) / 10) number.isBeyond = true;
        number.magnitude = number.magnitude * 10 + digit;
    }
    return number;
}

/// What a stream takes off the text for a double: a sign, digits, one point, and an exponent once
/// there is a digit.
std::string takeDouble(std::string_view text) {
    std::string taken;
    if (!text.empty() && (text[0] == '-' || text[0] == '+')) taken += text[0];
    bool hasDigit = false;
    bool hasPoint = false;
    bool hasExponent = false;
    for (const char c : text.substr(taken.size())) {
        const bool isFirstOfExponent = hasExponent && taken.back() == 'e';
        if (isDigit(c))
            hasDigit = true;
        else if (c == '.' && !hasPoint && !hasExponent)
            hasPoint = true;
        else if ((c == 'e' || c == 'E') && hasDigit && !hasExponent)
            hasExponent = true;
        else if (!((c == '-' || c == '+') && isFirstOfExponent))
            break;
        taken += c == 'E' ? 'e' : c;
    }
    return taken;
}

}  // namespace

bool isDigit(char c) {
    return c >= '0' && c <= '9';
}

bool isDecimal(std::string_view text, char point) {
    const std::size_t whole = countDigits(text);
    text.remove_prefix(whole);
    std::size_t fraction = 0;
    if (!text.empty() && text[0] == point) {
        fraction = countDigits(text.substr(1));
        text.remove_prefix(1 + fraction);
    }
    if (whole + fraction == 0) return false;
    if (text.empty()) return true;
    if (text[0] != 'e' && text[0] != 'E') return false;
    text = withoutSign(text.substr(1));
    return !text.empty() && countDigits(text) == text.size();
}

std::string_view withoutSign(std::string_view text) {
    if (!text.empty() && (text[0] == '-' || text[0] == '+')) text.remove_prefix(1);
    return text;
}

std::string toLower(std::string_view text) {
    std::string lower(text);
    for (char& c : lower)
        if (c >= 'A' && c <= 'Z') c = static_cast<char>(c - 'A' + 'a');
    return lower;
}

std::optional<double> readDouble(const std::string& text) {
    char* end = nullptr;
    const double value = std::strtod(text.c_str(), &end);
    if (text.empty() || end != text.c_str() + text.size()) return std::nullopt;
    return value;
}

std::optional<float> readFloat(const std::string& text) {
    char* end = nullptr;
    const float value = std::strtof(text.c_str(), &end);
    if (text.empty() || end != text.c_str() + text.size()) return std::nullopt;
    return value;
}

std::optional<double> extractDouble(std::string_view text) {
    const std::optional<double> value = readDouble(takeDouble(withoutBlanks(text)));
    if (!value || *value - *value != 0.0) return std::nullopt;
    return value;
}

std::optional<WholeNumber> extractInteger(std::string_view text) {
    text = withoutBlanks(text);
    const std::string_view digits = withoutSign(text);
    const std::size_t count = countDigits(digits);
    if (count == 0) return std::nullopt;
    return numberOf(digits.substr(0, count), text[0] == '-');
}

std::optional<WholeNumber> readInteger(std::string_view text) {
    const bool isNegative = !text.empty() && text[0] == '-';
    if (isNegative) text.remove_prefix(1);
    if (text.empty() || countDigits(text) != text.size()) return std::nullopt;
    return numberOf(text, isNegative);
}

}  // namespace Fuzz
