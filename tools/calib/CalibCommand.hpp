#pragma once

#include "tools/program/Command.hpp"

namespace SensorFileTool {

/// Shows, takes out, puts in and compares calibration records.
std::unique_ptr<Command> makeCalibCommand();

}  // namespace SensorFileTool
