#pragma once

#include "tools/program/OptionTree.hpp"

#include <string>

namespace SensorFileTool {

/// Scripts that complete verbs, options and the values of those that have a few only; file names
/// everywhere else.
[[nodiscard]] std::string bashCompletion(const VerbEntry& program);
[[nodiscard]] std::string zshCompletion(const VerbEntry& program);
[[nodiscard]] std::string fishCompletion(const VerbEntry& program);

}  // namespace SensorFileTool
