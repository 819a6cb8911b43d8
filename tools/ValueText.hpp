#pragma once

#include "tools/RowReader.hpp"

#include <cstddef>
#include <string>

namespace SensorFileTool {

/// Appends a value of the present row, as short as it reads back exactly in its column's type:
/// "0.1" for a float as for a double; "nan", "inf" and "-inf" for what is no number.
void appendValue(std::string& text, const RowReader& rows, std::size_t column);

/// Whether JSON can hold the value as a number without loss in readers that know doubles only: it
/// is finite and, if it is an integer of 64 bits, not beyond 2^53.
[[nodiscard]] bool isPlainNumber(const RowReader& rows, std::size_t column);

}  // namespace SensorFileTool
