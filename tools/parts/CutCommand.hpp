#pragma once

#include "tools/program/Command.hpp"

namespace SensorFileTool {

/// Writes a part of a recording, complete with header and calibration.
std::unique_ptr<Command> makeCutCommand();

}  // namespace SensorFileTool
