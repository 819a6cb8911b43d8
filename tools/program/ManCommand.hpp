#pragma once

#include "tools/program/Command.hpp"

namespace SensorFileTool {

/// Writes manual pages, made of the same texts as the help.
std::unique_ptr<Command> makeManCommand();

}  // namespace SensorFileTool
