#pragma once

#include <charconv>
#include <optional>
#include <string_view>
#include <type_traits>

namespace Quoril::Runner {

/// Reads a whole text as one number, in the classic notation whatever the locale. Unlike the stream
/// input of properties nothing may follow the number, so that "200,5" is no 200.
/// @return nothing if the text is not exactly one number, does not fit, or is not finite
template <class T>
[[nodiscard]] std::optional<T> parseNumber(std::string_view text) {
    if (text.size() > 1 && text[0] == '+' && text[1] != '-') text.remove_prefix(1);
    T value{};
    // cppcheck-suppress invalidLifetime ; the text lives as long as the call
    const char* end = text.data() + text.size();
    // cppcheck-suppress invalidLifetime ; as above
    const auto result = std::from_chars(text.data(), end, value);
    if (result.ec != std::errc() || result.ptr != end) return std::nullopt;
    if constexpr (std::is_floating_point_v<T>)
        if (value - value != T()) return std::nullopt;
    return value;
}

}  // namespace Quoril::Runner
