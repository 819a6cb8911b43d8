#pragma once

#include "tools/recording/Row.hpp"

#include <cstddef>
#include <optional>

namespace SensorFileTool {

/// Values a and b count as equal if
///
///     |a - b| <= max(absolute, relative * max(|a|, |b|))
///
/// and what is no number equals itself alone: NaN NaN, an infinity the same infinity.
struct Tolerance {
    double absolute = 0.0;
    double relative = 0.0;
};

/// How far two numbers are apart, infinity if either is not finite; nothing if they count as equal.
[[nodiscard]] std::optional<double> differenceBetween(double a, double b,
                                                      const Tolerance& tolerance);

/// The same for values of rows, exact for integers of 64 bits; their types need not be the same.
[[nodiscard]] std::optional<double> differenceBetween(const Row& rowA, std::size_t columnA,
                                                      const Row& rowB, std::size_t columnB,
                                                      const Tolerance& tolerance);

}  // namespace SensorFileTool
