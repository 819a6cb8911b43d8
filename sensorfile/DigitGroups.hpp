#pragma once

#include "sensorfile/ByteOrder.hpp"

#include <array>
#include <bit>
#include <charconv>
#include <cstddef>
#include <cstdint>
#include <cstring>

/// Decimal digits several at a time.
namespace SensorFile {

// ---- Number to text ----

/// Room that formatShortInteger() needs.
inline constexpr std::size_t kMaxShortInteger = 12;

/// Three digits and what is known of them: 4 KiB that stay in the nearest cache, as a table for
/// four digits would not.
class Triple {
 public:
    constexpr Triple() = default;
    constexpr explicit Triple(std::uint32_t number)
        : bits_(('0' + number / 100) | ('0' + number / 10 % 10) << 8 | ('0' + number % 10) << 16 |
                leadingZeros(number) << 24 | fractionLength(number) << 26) {}

    /// The characters, the first in the low byte. The high byte means nothing as a character.
    [[nodiscard]] constexpr std::uint32_t characters() const { return bits_; }
    /// Before the first digit that an integer is written with; 2 for zero.
    [[nodiscard]] constexpr std::uint32_t leadingZeros() const { return (bits_ >> 24) & 3; }
    /// Digits without the zeros at the end; 0 for zero.
    [[nodiscard]] constexpr std::uint32_t fractionLength() const { return bits_ >> 26; }

 private:
    static constexpr std::uint32_t leadingZeros(std::uint32_t number) {
        return number < 10 ? 2 : number < 100 ? 1 : 0;
    }
    static constexpr std::uint32_t fractionLength(std::uint32_t number) {
        if (number == 0) return 0;
        return number % 10 != 0 ? 3 : number % 100 != 0 ? 2 : 1;
    }

    std::uint32_t bits_ = 0;
};

constexpr std::array<Triple, 1000> makeTriples() {
    std::array<Triple, 1000> triples{};
    for (std::uint32_t number = 0; number < triples.size(); ++number)
        triples[number] = Triple(number);
    return triples;
}

inline constexpr auto kTriples = makeTriples();

/// Puts four characters, the first in the low byte.
inline void putCharacters(char* out, std::uint32_t characters) noexcept {
    if constexpr (std::endian::native == std::endian::big) characters = reverseBytes(characters);
    std::memcpy(out, &characters, sizeof characters);
}

/// A number below 1000 without leading zeros. Room for 4 characters is needed, whatever the length.
inline char* writeFewDigits(char* out, std::uint64_t value) noexcept {
    const Triple digits = kTriples[static_cast<std::size_t>(value)];
    putCharacters(out, digits.characters() >> (8 * digits.leadingZeros()));
    return out + (3 - digits.leadingZeros());
}

/// A number below a million without leading zeros. Room for 8 characters is needed.
inline char* writeSixDigits(char* out, std::uint32_t value) noexcept {
    if (value < 1000) return writeFewDigits(out, value);
    out = writeFewDigits(out, value / 1000);
    putCharacters(out, kTriples[value % 1000].characters());
    return out + 3;
}

/// An integer of up to 32 bits, which has six digits at most in most columns.
/// @param out room for kMaxShortInteger characters
/// @return the end of the text
inline char* formatShortInteger(char* out, std::int64_t value) noexcept {
    *out = '-';
    out += value < 0 ? 1 : 0;
    const auto magnitude = static_cast<std::uint32_t>(value < 0 ? -value : value);
    if (magnitude < 1'000'000) return writeSixDigits(out, magnitude);
    return std::to_chars(out, out + kMaxShortInteger - 1, magnitude).ptr;
}

// ---- Text to number ----

/// Compilers make one load of it where the processor's byte order allows.
inline std::uint64_t loadLittleEndian(const char* p) noexcept {
    const auto byte = [p](int i) {
        return std::uint64_t{static_cast<unsigned char>(p[i])} << (8 * i);
    };
    return byte(0) | byte(1) | byte(2) | byte(3) | byte(4) | byte(5) | byte(6) | byte(7);
}

/// Eight loaded characters as their differences to '0' by bits: digits are 0 to 9 then.
inline std::uint64_t digitsOf(std::uint64_t characters) noexcept {
    return characters ^ 0x3030'3030'3030'3030;
}

/// How many of digitsOf() are leading digits.
inline int countDigits(std::uint64_t digits) noexcept {
    constexpr std::uint64_t kHighBits = 0x8080'8080'8080'8080;
    constexpr std::uint64_t kTenReachesHighBit = 0x7676'7676'7676'7676;
    return std::countr_zero(((digits + kTenReachesHighBit) | digits) & kHighBits) / 8;
}

/// The number of eight digits, the first in the lowest byte: neighbours are joined to pairs, pairs
/// to fours, fours to the whole.
inline std::uint32_t joinDigits(std::uint64_t digits) noexcept {
    constexpr std::uint64_t kEverySecondPair = 0x0000'00ff'0000'00ff;
    const std::uint64_t pairs = digits * 10 + (digits >> 8);
    const std::uint64_t first =
        (pairs & kEverySecondPair) * (100 + (std::uint64_t{1'000'000} << 32));
    const std::uint64_t second =
        ((pairs >> 16) & kEverySecondPair) * (1 + (std::uint64_t{10'000} << 32));
    return static_cast<std::uint32_t>((first + second) >> 32);
}

/// The number of the first `count` of digitsOf(), 0 to 8: shifted up, the missing ones become
/// leading zeros. Two shifts, for a count of 0.
inline std::uint32_t joinDigits(std::uint64_t digits, int count) noexcept {
    const int halfShift = 4 * (8 - count);
    return joinDigits(digits << halfShift << halfShift);
}

}  // namespace SensorFile
