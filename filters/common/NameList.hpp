#pragma once

#include <string>
#include <vector>

namespace Filters {

/// The names in a list that a user typed, split at any of ";", "," and " "; blanks around a name
/// are trimmed and empty names dropped.
[[nodiscard]] std::vector<std::string> splitNames(const std::string& text);

}  // namespace Filters
