#pragma once

#include <cstdint>
#include <limits>
#include <optional>
#include <string>
#include <string_view>
#include <type_traits>

namespace Fuzz {

/// Numbers as texts in the plainest way, for harnesses to compare ours with: character by character
/// and std::strtod. The harnesses run in the classic locale.

/// An integer as it is written.
struct WholeNumber {
    bool isNegative = false;
    std::uint64_t magnitude = 0;
    bool isBeyond = false;  ///< the magnitude does not fit 64 bits

    template <class T>
    [[nodiscard]] bool fits() const {
        constexpr auto kLargest = static_cast<std::uint64_t>(std::numeric_limits<T>::max());
        constexpr std::uint64_t kMostNegative = std::is_signed_v<T> ? kLargest + 1 : 0;
        return !isBeyond && magnitude <= (isNegative ? kMostNegative : kLargest);
    }
    /// Modulo what T holds.
    template <class T>
    [[nodiscard]] T to() const {
        return static_cast<T>(isNegative ? 0 - magnitude : magnitude);
    }
};

[[nodiscard]] bool isDigit(char c);

/// "digits", with a point somewhere if there is one, and "e", a sign and digits behind it if there
/// is one: "1", ".5", "5.", "1e-3". No sign in front.
[[nodiscard]] bool isDecimal(std::string_view text, char point = '.');

/// The text without one sign in front of it.
[[nodiscard]] std::string_view withoutSign(std::string_view text);

/// The text in lower case, ASCII alone.
[[nodiscard]] std::string toLower(std::string_view text);

/// The nearest double; infinite where it is too large, nothing if strtod stops before the end.
[[nodiscard]] std::optional<double> readDouble(const std::string& text);
/// The nearest float.
[[nodiscard]] std::optional<float> readFloat(const std::string& text);

/// What `stream >> value` gives for a text in the classic locale: blanks in front are skipped, and
/// what follows the number does not count. Nothing if the stream fails.
[[nodiscard]] std::optional<double> extractDouble(std::string_view text);
/// The same for integers of any size.
[[nodiscard]] std::optional<WholeNumber> extractInteger(std::string_view text);

/// The integer of a text of digits with an optional minus sign and nothing else.
[[nodiscard]] std::optional<WholeNumber> readInteger(std::string_view text);

}  // namespace Fuzz
