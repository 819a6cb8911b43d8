#pragma once

#include "tools/program/Command.hpp"

namespace SensorFileTool {

/// Divides a recording into parts, each complete with header and calibration.
std::unique_ptr<Command> makeSplitCommand();

}  // namespace SensorFileTool
