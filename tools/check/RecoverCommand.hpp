#pragma once

#include "tools/program/Command.hpp"

namespace SensorFileTool {

/// Writes what is whole of a damaged file into a new one.
std::unique_ptr<Command> makeRecoverCommand();

}  // namespace SensorFileTool
