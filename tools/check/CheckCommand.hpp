#pragma once

#include "tools/program/Command.hpp"

namespace SensorFileTool {

/// Tells every defect of files. A file that cannot be read is told on the errors, and the others
/// are checked all the same.
std::unique_ptr<Command> makeCheckCommand();

}  // namespace SensorFileTool
