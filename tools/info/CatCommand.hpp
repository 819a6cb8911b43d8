#pragma once

#include "tools/program/Command.hpp"

namespace SensorFileTool {

/// Writes the rows of a recording as text.
std::unique_ptr<Command> makeCatCommand();

}  // namespace SensorFileTool
