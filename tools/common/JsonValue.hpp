#pragma once

#include "tools/common/Json.hpp"
#include "tools/recording/Row.hpp"

#include <cstddef>

namespace SensorFileTool {

/// A value of a row: a number, or as text what is not finite and integers above 2^53. One of type
/// float has as few digits as a float needs.
[[nodiscard]] Json jsonValue(const Row& row, std::size_t column);

}  // namespace SensorFileTool
