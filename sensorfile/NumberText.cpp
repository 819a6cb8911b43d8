#include "sensorfile/NumberText.hpp"

#include "sensorfile/DigitGroups.hpp"

#include <algorithm>
#include <array>
#include <bit>
#include <cfloat>
#include <cmath>
#include <cstdint>
#include <cstring>
#include <limits>

namespace SensorFile {
namespace {

static_assert(std::numeric_limits<double>::is_iec559 && std::numeric_limits<double>::digits == 53);
static_assert(std::numeric_limits<float>::is_iec559 && std::numeric_limits<float>::digits == 24);

// ---- Number to text ----

constexpr std::uint64_t kInfinityBits = std::uint64_t{0x7ff} << 52;
constexpr int kStreamDefaultPrecision = 6;

/// Powers of ten up to 10^22 are doubles.
constexpr std::array<double, 23> kExactPowers = {1e0,  1e1,  1e2,  1e3,  1e4,  1e5,  1e6,  1e7,
                                                 1e8,  1e9,  1e10, 1e11, 1e12, 1e13, 1e14, 1e15,
                                                 1e16, 1e17, 1e18, 1e19, 1e20, 1e21, 1e22};
constexpr std::int64_t kMaxExactPower = kExactPowers.size() - 1;

/// Up to 9 decimals the decimals fit 32 bits.
constexpr int kMaxScaledPrecision = 9;
constexpr std::array<std::uint32_t, kMaxScaledPrecision + 1> kPowersOfTen = {
    1, 10, 100, 1000, 10'000, 100'000, 1'000'000, 10'000'000, 100'000'000, 1'000'000'000};

char* append(char* out, const char* text, std::size_t length) noexcept {
    std::memcpy(out, text, length);
    return out + length;
}

/// The value integer + decimals / 10^precision, decimals < 10^precision.
struct Scaled {
    std::uint64_t integer;
    std::uint32_t decimals;
};

/// A magnitude rounded to `precision` decimals; false when it is too large or so near to the middle
/// of two decimals that the product's own rounding could decide, as it is in the middle itself.
bool scale(double magnitude, int precision, Scaled& scaled) noexcept {
    const double product = magnitude * kExactPowers[static_cast<std::size_t>(precision)];
    if (!(product < 0x1p52)) return false;
    const auto whole = static_cast<std::int64_t>(product);
    const double rest = product - static_cast<double>(whole);
    // Twice what a product can be off in any rounding mode.
    const double uncertainty = product * 0x1p-51;
    if (std::abs(rest - 0.5) <= uncertainty) return false;
    const std::uint32_t unit = kPowersOfTen[static_cast<std::size_t>(precision)];
    const auto integer = static_cast<std::int64_t>(magnitude);
    const std::int64_t decimals = whole + (rest > 0.5 ? 1 : 0) - integer * unit;
    const bool carries = decimals == unit;
    scaled.integer = static_cast<std::uint64_t>(integer + (carries ? 1 : 0));
    scaled.decimals = carries ? 0 : static_cast<std::uint32_t>(decimals);
    return true;
}

/// Any number. On its own, so that the usual case stays short.
[[gnu::noinline]] char* writeManyDigits(char* out, std::uint64_t value) noexcept {
    if (value < 1000) return writeFewDigits(out, value);
    char* const end = writeManyDigits(out, value / 1000);
    putCharacters(end, kTriples[static_cast<std::size_t>(value % 1000)].characters());
    return end + 3;
}

/// The point and the decimals; all nine are put there, and the end is chosen among them.
char* writeDecimals(char* point, std::uint32_t decimals, int precision, bool trimZeros) noexcept {
    const std::uint32_t nine =
        decimals * kPowersOfTen[static_cast<std::size_t>(kMaxScaledPrecision - precision)];
    const Triple first = kTriples[nine / 1'000'000];
    const Triple second = kTriples[nine / 1000 % 1000];
    const Triple third = kTriples[nine % 1000];
    *point = '.';
    putCharacters(point + 1, first.characters());
    putCharacters(point + 4, second.characters());
    putCharacters(point + 7, third.characters());
    if (!trimZeros) return point + 1 + precision;
    if (third.fractionLength() != 0) return point + 7 + third.fractionLength();
    if (second.fractionLength() != 0) return point + 4 + second.fractionLength();
    return point + first.fractionLength() + (first.fractionLength() != 0 ? 1 : 0);
}

/// Numbers that are none, large or exactly between two decimals, and precisions beyond the usual.
[[gnu::cold]] char* formatUnusual(char* out, double value, int precision, bool trimZeros) noexcept {
    const auto bits = std::bit_cast<std::uint64_t>(value);
    *out = '-';
    out += bits >> 63;
    const std::uint64_t magnitude = bits & (~std::uint64_t{0} >> 1);
    if (magnitude >= kInfinityBits)
        return append(out, magnitude > kInfinityBits ? "nan" : "inf", 3);
    char* end = std::to_chars(out, out + kMaxNumberText - 1, std::bit_cast<double>(magnitude),
                              std::chars_format::fixed, std::min(precision, kMaxPrecision))
                    .ptr;
    if (!trimZeros || precision == 0) return end;
    while (end[-1] == '0')
        --end;
    return end[-1] == '.' ? end - 1 : end;
}

/// formatShortest() knows the decimals of numbers from here...
constexpr double kLeastFixed = 1e-3;
/// ...to here: with nine decimals these are 15 digits at most, of which no two are the same double,
/// so that there is no shorter text than theirs.
constexpr double kFixedLimit = 1e6;
/// From here on integers may be shorter with an exponent.
constexpr std::uint64_t kFixedIntegerLimit = 100'000;
/// Added and taken away again, it leaves no bits behind the point: rounds to the nearest.
constexpr double kRounder = 0x1.8p52;

/// A magnitude that nine decimals tell exactly; false if it is not one.
bool splitExactly(double magnitude, Scaled& scaled) noexcept {
    constexpr auto kUnit = std::uint64_t{kPowersOfTen.back()};
    // Wider intermediate results (x87) would be rounded twice.
    if (FLT_EVAL_METHOD != 0 || !(magnitude >= kLeastFixed && magnitude < kFixedLimit))
        return false;
    const double rounded = magnitude * static_cast<double>(kUnit) + kRounder - kRounder;
    if (rounded / static_cast<double>(kUnit) != magnitude) return false;
    const auto whole = static_cast<std::uint64_t>(rounded);
    scaled.integer = whole / kUnit;
    scaled.decimals = static_cast<std::uint32_t>(whole % kUnit);
    return scaled.decimals != 0 || scaled.integer < kFixedIntegerLimit;
}

/// The same for floats below this.
constexpr float kFloatLimit = 1024.0F;

/// Decimals that tell floats of a magnitude apart: so many that no two texts are the same float,
/// which lie up to 2^-20, 2^-17 or 2^-14 apart.
std::size_t exactDecimals(float magnitude) noexcept {
    if (magnitude < 16.0F) return 6;
    return magnitude < 128.0F ? 5 : 4;
}

/// A magnitude that exactDecimals() tell exactly; false if it is not one. The quotient is rounded
/// twice, to double and to float, but never lies so near the middle of two floats that this would
/// matter.
bool splitExactly(float magnitude, Scaled& scaled) noexcept {
    if (FLT_EVAL_METHOD != 0 ||
        !(magnitude >= static_cast<float>(kLeastFixed) && magnitude < kFloatLimit))
        return false;
    const std::size_t decimals = exactDecimals(magnitude);
    const auto unit = static_cast<double>(kPowersOfTen[decimals]);
    const double rounded = static_cast<double>(magnitude) * unit + kRounder - kRounder;
    if (static_cast<float>(rounded / unit) != magnitude) return false;
    const auto whole = static_cast<std::uint64_t>(rounded);
    scaled.integer = whole / kPowersOfTen[decimals];
    scaled.decimals = static_cast<std::uint32_t>(
        whole % kPowersOfTen[decimals] *
        kPowersOfTen[static_cast<std::size_t>(kMaxScaledPrecision) - decimals]);
    return true;
}

// ---- Text to number ----

/// More digits than these do not fit 64 bits.
constexpr std::ptrdiff_t kMaxMantissaDigits = 19;
constexpr std::uint64_t kMaxExactInteger = std::uint64_t{1} << 53;
/// Beyond this no digit count of a text that fits in memory turns overflow into underflow.
constexpr std::int64_t kMaxWrittenExponent = std::int64_t{1} << 48;

/// A number's text taken apart: mantissa * 10^exponent, the mantissa only when it has few digits.
struct Decimal {
    const char* unsignedStart;
    const char* end;
    std::uint64_t mantissa;
    std::int64_t exponent;
    std::ptrdiff_t digits;
    bool isNegative;
};

/// The digits at p are appended to mantissa, modulo 2^64; returns their end. For the few digits
/// that are usual before a point.
const char* takeFewDigits(const char* p, const char* last, std::uint64_t& mantissa) noexcept {
    for (; p != last; ++p) {
        const auto digit = static_cast<unsigned char>(*p - '0');
        if (digit > 9) break;
        mantissa = mantissa * 10 + digit;
    }
    return p;
}

/// The same, eight at a time: for the many digits that are usual after a point.
const char* takeManyDigits(const char* p, const char* last, std::uint64_t& mantissa) noexcept {
    while (last - p >= 8) {
        const std::uint64_t digits = digitsOf(loadLittleEndian(p));
        const int count = countDigits(digits);
        mantissa =
            mantissa * kPowersOfTen[static_cast<std::size_t>(count)] + joinDigits(digits, count);
        p += count;
        if (count < 8) return p;
    }
    return takeFewDigits(p, last, mantissa);
}

/// Takes the exponent at p (its 'e' or 'E'); nullptr when it has no digits.
const char* takeExponent(const char* p, const char* last, std::int64_t& exponent) noexcept {
    ++p;
    const bool isNegative = p != last && *p == '-';
    if (p != last && (*p == '-' || *p == '+')) ++p;
    const char* const start = p;
    std::int64_t written = 0;
    for (; p != last && *p >= '0' && *p <= '9'; ++p) {
        written = std::min(written * 10 + (*p - '0'), kMaxWrittenExponent);
    }
    exponent += isNegative ? -written : written;
    return p == start ? nullptr : p;
}

/// Takes the longest number as a stream does; false when what it would collect is none.
/// No branch depends on the sign, which cannot be foreseen.
bool takeDecimal(const char* first, const char* last, Decimal& number) noexcept {
    const char* p = first;
    const char sign = p != last ? *p : '\0';
    number.isNegative = sign == '-';
    p += static_cast<int>(sign == '-') | static_cast<int>(sign == '+');
    number.unsignedStart = p;
    number.mantissa = 0;
    number.exponent = 0;
    const char* const integerEnd = takeFewDigits(p, last, number.mantissa);
    number.digits = integerEnd - p;
    p = integerEnd;
    if (p != last && *p == '.') {
        ++p;
        const char* const fractionEnd = takeManyDigits(p, last, number.mantissa);
        number.digits += fractionEnd - p;
        number.exponent = p - fractionEnd;
        p = fractionEnd;
    }
    if (number.digits == 0) return false;
    if (p != last && (*p == 'e' || *p == 'E')) p = takeExponent(p, last, number.exponent);
    number.end = p;
    return p != nullptr;
}

/// The double nearest to a short decimal; false when that takes more than one operation. Integers
/// up to 2^53 and the powers are doubles, so that a product or quotient of two is rounded correctly
/// (Clinger, "How to read floating point numbers accurately", 1990).
bool convertExactly(const Decimal& number, double& magnitude) noexcept {
    // Wider intermediate results (x87) would be rounded twice.
    if (FLT_EVAL_METHOD != 0 || number.digits > kMaxMantissaDigits) return false;
    if (number.mantissa > kMaxExactInteger) return false;
    if (number.exponent < -kMaxExactPower || number.exponent > kMaxExactPower) return false;
    const auto mantissa = static_cast<double>(number.mantissa);
    magnitude = number.exponent < 0
                    ? mantissa / kExactPowers[static_cast<std::size_t>(-number.exponent)]
                    : mantissa * kExactPowers[static_cast<std::size_t>(number.exponent)];
    return true;
}

/// The float nearest to a short decimal, from the double nearest to it. Rounding twice is only
/// wrong when that double lies exactly between two floats.
bool convertExactly(const Decimal& number, float& magnitude) noexcept {
    double nearest = 0.0;
    if (!convertExactly(number, nearest)) return false;
    constexpr std::uint64_t kBelowFloat = (std::uint64_t{1} << (53 - 24)) - 1;
    const bool isHalfway =
        (std::bit_cast<std::uint64_t>(nearest) & kBelowFloat) == (kBelowFloat + 1) / 2;
    const bool isNormal = nearest >= double{FLT_MIN} && nearest <= double{FLT_MAX};
    if (isHalfway || !(isNormal || nearest == 0.0)) return false;
    magnitude = static_cast<float>(nearest);
    return true;
}

/// "nan", "-nan", "inf", "-inf": what streams write but do not read.
template <std::floating_point T>
std::from_chars_result parseNonFinite(const char* first, const char* last, T& value) noexcept {
    const bool isNegative = first != last && *first == '-';
    const char* const word = first + (isNegative ? 1 : 0);
    T magnitude{};
    if (last - word >= 3 && std::memcmp(word, "nan", 3) == 0) {
        magnitude = std::numeric_limits<T>::quiet_NaN();
    } else if (last - word >= 3 && std::memcmp(word, "inf", 3) == 0) {
        magnitude = std::numeric_limits<T>::infinity();
    } else {
        return {first, std::errc::invalid_argument};
    }
    value = isNegative ? -magnitude : magnitude;
    return {word + 3, std::errc{}};
}

/// True when the number's magnitude is 1 or more: out of range, it is then too large, not too
/// small.
bool isOneOrMore(const Decimal& number) noexcept {
    std::int64_t leading = number.digits;  // digits from the first that is not zero on
    for (const char* p = number.unsignedStart; *p == '0' || *p == '.'; ++p) {
        if (*p == '0') --leading;
    }
    return leading + number.exponent > 0;
}

template <std::floating_point T>
std::from_chars_result parseFloating(const char* first, const char* last, T& value) noexcept {
    Decimal number;
    if (!takeDecimal(first, last, number)) return parseNonFinite(first, last, value);
    T magnitude{};
    if (!convertExactly(number, magnitude)) {
        const auto result = std::from_chars(number.unsignedStart, number.end, magnitude);
        if (result.ec == std::errc::result_out_of_range) {
            // from_chars leaves the value alone; a stream takes what is too small for zero.
            if (isOneOrMore(number)) return {number.end, result.ec};
            magnitude = T{};
        }
    }
    constexpr std::array<T, 2> kSigns = {1, -1};
    value = magnitude * kSigns[number.isNegative ? 1 : 0];
    return {number.end, std::errc{}};
}

}  // namespace

char* formatFixed(char* out, double value, int precision, bool trimZeros) noexcept {
    if (precision < 0) precision = kStreamDefaultPrecision;
    Scaled scaled;
    if (precision > kMaxScaledPrecision || !scale(std::abs(value), precision, scaled)) {
        return formatUnusual(out, value, precision, trimZeros);
    }
    *out = '-';
    out += std::bit_cast<std::uint64_t>(value) >> 63;
    char* const point = scaled.integer < 1000 ? writeFewDigits(out, scaled.integer)
                                              : writeManyDigits(out, scaled.integer);
    if (precision == 0) return point;
    return writeDecimals(point, scaled.decimals, precision, trimZeros);
}

namespace {

template <typename T>
char* formatShortestOf(char* out, T value) noexcept {
    Scaled scaled{};
    if (!splitExactly(std::abs(value), scaled))
        return std::to_chars(out, out + kMaxShortestText, value).ptr;
    *out = '-';
    out += value < 0 ? 1 : 0;
    out = writeSixDigits(out, static_cast<std::uint32_t>(scaled.integer));
    return writeDecimals(out, scaled.decimals, kMaxScaledPrecision, /*trimZeros=*/true);
}

}  // namespace

char* formatShortest(char* out, double value) noexcept {
    return formatShortestOf(out, value);
}

char* formatShortest(char* out, float value) noexcept {
    return formatShortestOf(out, value);
}

std::from_chars_result parseDouble(const char* first, const char* last, double& value) noexcept {
    return parseFloating(first, last, value);
}

std::from_chars_result parseFloat(const char* first, const char* last, float& value) noexcept {
    return parseFloating(first, last, value);
}

}  // namespace SensorFile
