#pragma once

#include <string>

namespace Quoril::Runner {

/// Puts quotation marks around connections with settings, which YAML does not take without them:
/// items such as `- imu.acc -> rec.input#1 {buffer: 64}`, on a line of their own, in the section
/// "connections". Lines and the columns at which items begin stay the same; everything else, and
/// what has quotation marks already, is left alone.
[[nodiscard]] std::string quoteConnections(const std::string& text);

}  // namespace Quoril::Runner
