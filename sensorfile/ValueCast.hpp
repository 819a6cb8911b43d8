#pragma once

#include <cmath>
#include <cstdint>
#include <limits>
#include <type_traits>
#include <utility>

#include <Poco/Exception.h>

/// Conversions of values to the types of columns. None of them is undefined for any value.
namespace SensorFile {

/// The low 64 bits of a finite number of any size, truncated toward zero; 0 for NaN and infinity.
std::uint64_t lowBitsOfLarge(double value) noexcept;

/// The low 64 bits of a number truncated toward zero; 0 for NaN and infinity.
inline std::uint64_t lowBits(double value) noexcept {
    if (std::abs(value) < 0x1p63)
        return static_cast<std::uint64_t>(static_cast<std::int64_t>(value));
    return lowBitsOfLarge(value);
}
inline std::uint64_t lowBits(std::int64_t value) noexcept {
    return static_cast<std::uint64_t>(value);
}
inline std::uint64_t lowBits(std::uint64_t value) noexcept {
    return value;
}

/// A number as a Target; floating point numbers are truncated toward zero for integers and rounded
/// for float, and bool is what POCO makes of a number: magnitudes up to the smallest normal one of
/// their type are false.
/// @throws Poco::RangeException if the truncated value does not fit; NaN fits no integer, NaN and
///         infinity fit float and double
template <typename Target, typename Source>
Target fitCast(Source value) {
    if constexpr (std::is_same_v<Target, Source> || std::is_same_v<Target, double>) {
        return static_cast<Target>(value);
    } else if constexpr (std::is_same_v<Target, bool>) {
        if constexpr (std::is_integral_v<Source>) {
            return value != 0;
        } else {
            return !(std::abs(value) <= std::numeric_limits<Source>::min());
        }
    } else if constexpr (std::is_same_v<Target, float>) {
        const auto rounded = static_cast<float>(value);
        if constexpr (std::is_same_v<Source, double>) {
            if (std::isinf(rounded) && !std::isinf(value)) {
                throw Poco::RangeException(value > 0 ? "Value too large." : "Value too small.");
            }
        }
        return rounded;
    } else if constexpr (std::is_integral_v<Source>) {
        if (!std::in_range<Target>(value)) {
            throw Poco::RangeException(value > 0 ? "Value too large." : "Value too small.");
        }
        return static_cast<Target>(value);
    } else {
        // Both bounds are powers of two or zero, hence exact in any floating point type.
        const Source limit = std::ldexp(Source{1}, std::numeric_limits<Target>::digits);
        const Source lowest = std::is_signed_v<Target> ? -limit : Source{0};
        const Source whole = std::trunc(value);
        if (std::isnan(whole)) throw Poco::RangeException("Value is not a number.");
        if (whole >= limit) throw Poco::RangeException("Value too large.");
        if (whole < lowest) throw Poco::RangeException("Value too small.");
        return static_cast<Target>(whole);
    }
}

}  // namespace SensorFile
