#pragma once

#include <cstdint>
#include <optional>

namespace Filters {

/// The value truncated toward zero; nothing for NaN, infinities and what 64 bits cannot hold.
[[nodiscard]] std::optional<std::int64_t> truncateToInt64(double value);

/// The value truncated toward zero; what 32 bits cannot hold becomes the nearest value that they
/// can, and NaN becomes 0.
[[nodiscard]] std::int32_t truncateToInt32(double value);

/// Milliseconds for a sleep: truncated, within 0 and 2147483647; NaN is 0.
[[nodiscard]] std::int32_t clampMilliseconds(double milliseconds);

}  // namespace Filters
