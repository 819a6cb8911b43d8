#pragma once

#include "host/runner/FlowPreparation.hpp"

#include <iosfwd>

namespace Quoril::Runner {

class Console;

/// Tells everything for which run would refuse the flow. Plug-ins are loaded, filters made and
/// their properties set (files that they read are opened), but nothing is started and nothing
/// written.
/// @return the exit code of the program
[[nodiscard]] int checkFlow(const FlowOptions& options, std::ostream& output, Console& console);

/// Writes the flow as a graph in Graphviz's DOT. Needs no plug-ins: only the file is read.
/// @return the exit code of the program
[[nodiscard]] int graphFlow(const std::string& path, std::ostream& output, Console& console);

}  // namespace Quoril::Runner
