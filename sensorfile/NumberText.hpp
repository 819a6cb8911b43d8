#pragma once

#include <charconv>
#include <concepts>
#include <cstddef>
#include <system_error>
#include <type_traits>

/// Numbers to text and back, to the byte what streams of the classic locale do, whatever the
/// process's locale is, and many times faster. Everything here may be called from any thread.
namespace SensorFile {

/// Enough for any double in fixed notation with 20 decimals: a sign, 309 digits, a point, 20
/// digits.
inline constexpr std::size_t kMaxNumberText = 352;

/// Decimals beyond this are not written: the text stays within kMaxNumberText.
inline constexpr int kMaxPrecision = 20;

/// A double has no more decimals than these; further ones are zeros.
inline constexpr int kMaxDecimals = 1074;

/// Writes value as a classic-locale stream does with std::fixed and std::setprecision(precision).
/// With trimZeros a text that has a '.' loses its trailing zeros, and then a trailing '.':
/// "1.50000" becomes "1.5", "-0.00000" becomes "-0". NaN and infinity give "nan", "-nan", "inf" and
/// "-inf".
/// @param out room for kMaxNumberText characters
/// @param precision digits after the point; above kMaxPrecision counts as kMaxPrecision, below 0 as
///        6, which is what a stream makes of it
/// @return the end of the text, which has no NUL
char* formatFixed(char* out, double value, int precision, bool trimZeros) noexcept;

/// Writes the shortest text that reads back as the same double, as std::to_chars does: "0.1",
/// "1e+05", "nan". Many times faster for numbers of few decimals.
/// @param out room for kMaxShortestText characters
/// @return as formatFixed
char* formatShortest(char* out, double value) noexcept;
/// The same for a float: shortest text that reads back as the same float.
char* formatShortest(char* out, float value) noexcept;

/// Room that formatShortest needs.
inline constexpr std::size_t kMaxShortestText = 32;

/// Reads what a classic-locale stream extracts as a double: an optional sign, digits with or
/// without a point, an optional exponent ("+1.5", ".5", "5.", "-1e-3"; no blanks, no hexadecimal),
/// rounded correctly; a number too small for a double is a denormal or zero. It also takes what
/// formatFixed writes of other values: "nan", "-nan", "inf" and "-inf".
/// @param first the number's first character; blanks are the caller's to skip
/// @return the end of the number and no error; or first and errc::invalid_argument when there is no
///         number ("", "-", ".", "1e", "1e+"); or the end of the number and
///         errc::result_out_of_range when it is too large. value is set only without error.
std::from_chars_result parseDouble(const char* first, const char* last, double& value) noexcept;

/// As parseDouble, rounded once, from the decimal text to single precision.
std::from_chars_result parseFloat(const char* first, const char* last, float& value) noexcept;

/// Reads what a classic-locale stream extracts as a decimal integer of type T, an 8-bit T being a
/// number, too: an optional sign, then digits. As in a stream, a negative number whose magnitude
/// fits an unsigned T is taken modulo 2^bits: "-1" gives the largest value.
/// @return as parseDouble
template <std::integral T>
requires(!std::same_as<T, bool>) std::from_chars_result
    parseInteger(const char* first, const char* last, T& value)
noexcept {
    const bool hasSign = first != last && (*first == '+' || *first == '-');
    const bool isNegative = hasSign && *first == '-';
    const bool leaveSign = isNegative && std::is_signed_v<T>;
    const char* const number = first + (hasSign && !leaveSign ? 1 : 0);
    if (hasSign && !leaveSign && number != last && *number == '-') {
        return {first, std::errc::invalid_argument};  // "+-1": from_chars would take the minus
    }
    T parsed{};
    const auto result = std::from_chars(number, last, parsed);
    if (result.ec == std::errc::invalid_argument) return {first, result.ec};
    if (result.ec == std::errc{}) {
        value = isNegative && !leaveSign ? static_cast<T>(T{} - parsed) : parsed;
    }
    return result;
}

}  // namespace SensorFile
