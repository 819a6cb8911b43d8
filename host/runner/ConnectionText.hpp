#pragma once

#include "host/runner/FlowModel.hpp"

#include <string>

namespace Quoril::Runner {

/// Splits "filter.member" at the first dot.
/// @throws Poco::DataFormatException if there is no dot, or nothing on one side of it
[[nodiscard]] MemberName parseMemberName(const Text& text);

/// Reads a connection such as "imu.acc -> rec.input#1 {buffer: 64, lifo: false}".
/// @throws Poco::DataFormatException if it is none
[[nodiscard]] ConnectionEntry parseConnection(const Text& text);

/// Reads the number of samples of a buffer, 1 to 1000000.
/// @throws Poco::DataFormatException
[[nodiscard]] unsigned parseBufferSize(const std::string& text);

/// Reads true or false, in lower, upper or mixed case.
/// @throws Poco::DataFormatException for everything else, "yes" and "on" too
[[nodiscard]] bool parseTruth(const std::string& text);

}  // namespace Quoril::Runner
