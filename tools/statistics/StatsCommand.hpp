#pragma once

#include "tools/program/Command.hpp"

namespace SensorFileTool {

/// Sums up the columns of a recording, and tells the Allan deviations of those that are named.
std::unique_ptr<Command> makeStatsCommand();

}  // namespace SensorFileTool
