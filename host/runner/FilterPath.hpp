#pragma once

#include <string>

namespace Quoril::Runner {

/// The absolute path that a filter takes a user's text for, its variables replaced.
[[nodiscard]] std::string toFilterPath(const std::string& text);

}  // namespace Quoril::Runner
