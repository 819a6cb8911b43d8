#pragma once

#include "tools/plot/PlotAssets.hpp"
#include "tools/program/Command.hpp"

namespace SensorFileTool {

/// Writes a page that shows a recording's columns over time.
std::unique_ptr<Command> makePlotCommand();

/// The same of other assets than the program's own.
/// @param assets  must outlive the command; nullptr: it tells that it cannot plot
std::unique_ptr<Command> makePlotCommand(const PlotAssets* assets);

}  // namespace SensorFileTool
