#pragma once

#include <bit>
#include <concepts>
#include <cstdint>
#include <cstring>
#include <type_traits>

/// Numbers in files of either byte order, whatever the machine's own order is.
namespace SensorFile {

static_assert(std::endian::native == std::endian::little ||
              std::endian::native == std::endian::big);

namespace Internal {
template <std::size_t Size>
struct UnsignedOf;
template <>
struct UnsignedOf<1> {
    using Type = std::uint8_t;
};
template <>
struct UnsignedOf<2> {
    using Type = std::uint16_t;
};
template <>
struct UnsignedOf<4> {
    using Type = std::uint32_t;
};
template <>
struct UnsignedOf<8> {
    using Type = std::uint64_t;
};
}  // namespace Internal

/// The bytes in reverse: halves are exchanged, then their halves. Compilers make one instruction of
/// it, and of a loop of it instructions for several values at once.
template <std::unsigned_integral T>
constexpr T reverseBytes(T value) {
    if constexpr (sizeof(T) == 8) {
        value = (value << 32) | (value >> 32);
        value = ((value & 0x0000'ffff'0000'ffff) << 16) | ((value >> 16) & 0x0000'ffff'0000'ffff);
        return ((value & 0x00ff'00ff'00ff'00ff) << 8) | ((value >> 8) & 0x00ff'00ff'00ff'00ff);
    } else if constexpr (sizeof(T) == 4) {
        value = (value << 16) | (value >> 16);
        return ((value & 0x00ff'00ff) << 8) | ((value >> 8) & 0x00ff'00ff);
    } else if constexpr (sizeof(T) == 2) {
        return static_cast<T>((value << 8) | (value >> 8));
    } else {
        return value;
    }
}

/// Writes a number at `out`, big-endian; returns its end.
template <typename T>
requires std::is_arithmetic_v<T>
char* storeBigEndian(char* out, T value) {
    auto bits = std::bit_cast<typename Internal::UnsignedOf<sizeof(T)>::Type>(value);
    if constexpr (std::endian::native == std::endian::little) bits = reverseBytes(bits);
    std::memcpy(out, &bits, sizeof bits);
    return out + sizeof bits;
}

/// Reads a number of the given byte order.
template <typename T, std::endian Order>
requires std::is_arithmetic_v<T> T loadAs(const char* in) {
    typename Internal::UnsignedOf<sizeof(T)>::Type bits;
    std::memcpy(&bits, in, sizeof bits);
    if constexpr (Order != std::endian::native) bits = reverseBytes(bits);
    return std::bit_cast<T>(bits);
}

}  // namespace SensorFile
