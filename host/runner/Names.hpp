#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace Quoril::Runner {

/// Number of insertions, deletions, replacements and exchanges of neighbours that turn one text
/// into the other; upper and lower case of ASCII letters count as equal.
[[nodiscard]] std::size_t editDistance(std::string_view a, std::string_view b);

/// The name most like the wrong one, or an empty text if none is near: at most a third of its
/// letters may differ. Of equally near names the first one.
[[nodiscard]] std::string findNearestName(std::string_view wrong,
                                          const std::vector<std::string>& names);

/// The end of an error text: "; did you mean 'Record'?", or else "; there are 'a', 'b'" (at most
/// twelve, of each 60 bytes), or "; there are none".
[[nodiscard]] std::string suggestName(std::string_view wrong,
                                      const std::vector<std::string>& names);

}  // namespace Quoril::Runner
