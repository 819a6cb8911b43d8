#pragma once

#include "tools/program/Command.hpp"

namespace SensorFileTool {

/// Writes what a shell needs to complete the program's verbs and options.
std::unique_ptr<Command> makeCompletionCommand();

}  // namespace SensorFileTool
