#pragma once

#include "tools/recording/Row.hpp"

#include <cstddef>
#include <string>

namespace SensorFileTool {

/// No value's text is longer.
inline constexpr std::size_t kMaxValueText = 32;

/// Writes a value as short as it reads back exactly in its column's type: "0.1" for a float as for
/// a double; "nan", "inf" and "-inf" for what is no number.
/// @param out  room for kMaxValueText characters
/// @return the end of the text
char* formatValue(char* out, const Row& row, std::size_t column);

/// The same as a text of its own.
[[nodiscard]] std::string valueText(const Row& row, std::size_t column);

/// Whether JSON can hold the value as a number without loss in readers that know doubles only: it
/// is finite and, if it is an integer of 64 bits, not beyond 2^53.
[[nodiscard]] bool isPlainNumber(const Row& row, std::size_t column);

}  // namespace SensorFileTool
