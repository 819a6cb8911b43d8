#pragma once

#include "tools/program/Command.hpp"

namespace SensorFileTool {

/// Puts parts of a recording together again and tells what is missing between them.
std::unique_ptr<Command> makeMergeCommand();

}  // namespace SensorFileTool
