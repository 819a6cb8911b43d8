#pragma once

#include "tools/program/Command.hpp"

namespace SensorFileTool {

/// Compares two sensor files. Its exit codes are those of diff(1): 0 the same, 1 different,
/// 2 trouble.
std::unique_ptr<Command> makeDiffCommand();

}  // namespace SensorFileTool
