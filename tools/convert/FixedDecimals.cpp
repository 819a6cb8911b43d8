#include "tools/convert/FixedDecimals.hpp"

#include "sensorfile/ColumnType.hpp"
#include "sensorfile/NumberText.hpp"
#include "sensorfile/SensorFileConfig.hpp"

#include <bit>
#include <cfloat>
#include <cmath>
#include <cstdint>
#include <type_traits>
#include <vector>

namespace SensorFileTool {

namespace {

/// Up to here powers of ten are doubles.
constexpr int kMaxExactPower = 22;
/// Below this a product with a power of ten is less than half of a decimal off, so that a number
/// that reads back is rounded to the decimals that stand in the text.
constexpr double kMaxScaled = 0x1p51;
/// Added and taken away again, it leaves no bits behind the point: rounds to the nearest.
constexpr double kRounder = 0x1.8p52;

SensorFile::TextRowCodec codecOf(int precision) {
    SensorFile::SensorFileConfig config;
    config.setDoublePrecision(precision);
    config.addColumn("value", SensorFile::kDouble);
    return SensorFile::TextRowCodec(config);
}

double exactPower(int precision) {
    // Wider intermediate results (x87) would be rounded twice.
    if (FLT_EVAL_METHOD != 0 || precision < 0 || precision > kMaxExactPower) return 0.0;
    double power = 1.0;
    for (int i = 0; i < precision; ++i)
        power *= 10.0;
    return power;
}

/// Exactly between two floats, or so near that the double is: which is the nearest one cannot be
/// told from it.
bool isBetweenFloats(double value) {
    constexpr std::uint64_t kBelowFloat = (std::uint64_t{1} << (DBL_MANT_DIG - FLT_MANT_DIG)) - 1;
    return (std::bit_cast<std::uint64_t>(value) & kBelowFloat) == (kBelowFloat + 1) / 2;
}

/// So near to the middle of two decimals that the product's rounding may have decided.
bool isBetweenDecimals(double scaled, double rounded) {
    return std::abs(std::abs(scaled - rounded) - 0.5) <= std::abs(scaled) * 0x1p-51;
}

}  // namespace

FixedDecimals::FixedDecimals(int precision)
    : codec_(codecOf(precision)), power_(exactPower(precision)) {}

bool FixedDecimals::keeps(double value) const {
    const double scaled = value * power_;
    if (power_ == 0.0 || !(std::abs(scaled) < kMaxScaled)) return readsBack(value);
    return (scaled + kRounder - kRounder) / power_ == value;
}

bool FixedDecimals::keeps(float value) const {
    const double scaled = double{value} * power_;
    if (power_ == 0.0 || !(std::abs(scaled) < kMaxScaled)) return readsBack(value);
    const double rounded = scaled + kRounder - kRounder;
    const double nearest = rounded / power_;
    if (isBetweenDecimals(scaled, rounded) || isBetweenFloats(nearest)) return readsBack(value);
    return static_cast<float>(nearest) == value;
}

/// The long way.
template <typename T>
bool FixedDecimals::readsBack(T value) const {
    if (!std::isfinite(value)) return true;
    const std::string text = textOf(double{value});
    T found{};
    if constexpr (std::is_same_v<T, float>) {
        SensorFile::parseFloat(text.data(), text.data() + text.size(), found);
    } else {
        SensorFile::parseDouble(text.data(), text.data() + text.size(), found);
    }
    return found == value;
}

std::string FixedDecimals::textOf(double value) const {
    std::string text(codec_.maxValueSize(), '\0');
    const char* const end = codec_.format(0, value, text.data());
    text.resize(static_cast<std::size_t>(end - text.data()));
    return text;
}

}  // namespace SensorFileTool
