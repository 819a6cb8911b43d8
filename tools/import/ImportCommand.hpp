#pragma once

#include "tools/program/Command.hpp"

namespace SensorFileTool {

/// Makes a recording of a CSV file.
std::unique_ptr<Command> makeImportCommand();

}  // namespace SensorFileTool
