#pragma once

#include "framework/Export.hpp"

#include <string>
#include <string_view>

namespace Quoril::Core {

/// Text from a file for a message: in single quotes, control characters as "\x00", and cut after
/// 40 bytes (never within a UTF-8 character).
[[nodiscard]] QUORIL_CORE_API std::string quoteForMessage(std::string_view text);

}  // namespace Quoril::Core
