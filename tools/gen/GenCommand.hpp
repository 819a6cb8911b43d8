#pragma once

#include "tools/program/Command.hpp"

namespace SensorFileTool {

/// Makes up recordings for trying things out.
std::unique_ptr<Command> makeGenCommand();

}  // namespace SensorFileTool
