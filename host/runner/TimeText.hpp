#pragma once

#include <chrono>
#include <string>

namespace Quoril::Runner {

/// Reads a time such as "200ms", "1.5s" or "2 min".
/// @throws Poco::DataFormatException if the number or the unit is missing or unknown, the time is
///         negative or longer than 1000 days
[[nodiscard]] std::chrono::nanoseconds parseTime(const std::string& text);

}  // namespace Quoril::Runner
