#pragma once

#include "tools/program/Command.hpp"

namespace SensorFileTool {

/// Tells what is in sensor files and Kivra2 calibration files. A file that cannot be read is told
/// on the errors, and the others are told all the same.
std::unique_ptr<Command> makeInfoCommand();

}  // namespace SensorFileTool
