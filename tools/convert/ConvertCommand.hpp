#pragma once

#include "tools/program/Command.hpp"

#include <memory>

namespace SensorFileTool {

/// The verb convert: turns a sensor file into one of the other encoding or into another format.
[[nodiscard]] std::unique_ptr<Command> makeConvertCommand();

}  // namespace SensorFileTool
