#include "filters/common/Numbers.hpp"

#include <cmath>
#include <limits>

namespace Filters {

std::optional<std::int64_t> truncateToInt64(double value) {
    // 2^63 itself is out of range, its negative is in. A NaN fails both comparisons.
    constexpr double kLimit = 9223372036854775808.0;
    if (!(value >= -kLimit && value < kLimit)) return std::nullopt;
    return static_cast<std::int64_t>(value);
}

std::int32_t truncateToInt32(double value) {
    using Limits = std::numeric_limits<std::int32_t>;
    if (std::isnan(value)) return 0;
    if (value <= Limits::min()) return Limits::min();
    if (value >= Limits::max()) return Limits::max();
    return static_cast<std::int32_t>(value);
}

std::int32_t clampMilliseconds(double milliseconds) {
    return milliseconds > 0.0 ? truncateToInt32(milliseconds) : 0;
}

}  // namespace Filters
