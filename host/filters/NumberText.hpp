#pragma once

#include "framework/Export.hpp"

#include <string_view>

namespace Quoril::Core {

/// Reads a text that is one number and nothing else, in any locale the same: "-1.5", "+2",
/// "5.35E-05", "inf", "nan" (upper or lower case). The nearest double is taken, so integers are
/// exact up to 2^53; a number too small for a double becomes 0.
/// @return false, and the value untouched, if the text is no number or too large for a double
[[nodiscard]] QUORIL_CORE_API bool parseNumber(std::string_view text, double& value);

/// Removes spaces and tabs at both ends.
[[nodiscard]] QUORIL_CORE_API std::string_view trimBlanks(std::string_view text);

}  // namespace Quoril::Core
