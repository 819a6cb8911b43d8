#include "tools/diff/ValueDifference.hpp"

#include "sensorfile/ColumnType.hpp"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <limits>

namespace SensorFileTool {

namespace {

constexpr double kInfinity = std::numeric_limits<double>::infinity();
constexpr double kTwoTo64 = 18446744073709551616.0;

/// Any integer of a column, or a double that is one of 64 bits.
struct Integer {
    bool isNegative = false;
    std::uint64_t magnitude = 0;
};

std::optional<Integer> integerOf(const Row& row, std::size_t column) {
    const double value = row.getValue(column);
    if (row.isWide(column)) {
        const std::uint64_t bits = row.getBits(column);
        const bool isNegative = row.getTypeCode(column) == SensorFile::kInt64 && value < 0.0;
        return Integer{isNegative, isNegative ? 0U - bits : bits};
    }
    const double magnitude = std::abs(value);
    if (!(magnitude < kTwoTo64) || std::trunc(value) != value) return std::nullopt;
    return Integer{value < 0.0, static_cast<std::uint64_t>(magnitude)};
}

double limitOf(double a, double b, const Tolerance& tolerance) {
    return std::max(tolerance.absolute, tolerance.relative * std::max(std::abs(a), std::abs(b)));
}

/// Whether an integer is above a limit that need not be one: no rounding on the way.
bool isAbove(std::uint64_t magnitude, double limit) {
    return limit < kTwoTo64 && magnitude > static_cast<std::uint64_t>(limit);
}

std::optional<double> integerDifference(const Integer& a, const Integer& b, double limit) {
    if (a.isNegative != b.isNegative) {
        const double sum = static_cast<double>(a.magnitude) + static_cast<double>(b.magnitude);
        return sum > limit ? std::optional(sum) : std::nullopt;
    }
    const std::uint64_t distance =
        std::max(a.magnitude, b.magnitude) - std::min(a.magnitude, b.magnitude);
    return isAbove(distance, limit) ? std::optional(static_cast<double>(distance)) : std::nullopt;
}

}  // namespace

std::optional<double> differenceBetween(double a, double b, const Tolerance& tolerance) {
    if (a == b || (std::isnan(a) && std::isnan(b))) return std::nullopt;
    if (!std::isfinite(a) || !std::isfinite(b)) return kInfinity;
    const double distance = std::abs(a - b);
    return distance > limitOf(a, b, tolerance) ? std::optional(distance) : std::nullopt;
}

std::optional<double> differenceBetween(const Row& rowA, std::size_t columnA, const Row& rowB,
                                        std::size_t columnB, const Tolerance& tolerance) {
    const double a = rowA.getValue(columnA);
    const double b = rowB.getValue(columnB);
    if (rowA.isWide(columnA) || rowB.isWide(columnB)) {
        const std::optional<Integer> integerA = integerOf(rowA, columnA);
        const std::optional<Integer> integerB = integerOf(rowB, columnB);
        if (integerA && integerB)
            return integerDifference(*integerA, *integerB, limitOf(a, b, tolerance));
    }
    return differenceBetween(a, b, tolerance);
}

}  // namespace SensorFileTool
