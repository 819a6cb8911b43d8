#pragma once

#include "tools/program/Command.hpp"

namespace SensorFileTool {

/// Tells how good a recording's time is: rate, jitter, gaps, losses, drift; judges it by limits.
std::unique_ptr<Command> makeTimeCommand();

}  // namespace SensorFileTool
