#pragma once

#include "host/runner/FlowModel.hpp"

#include <string>

namespace Quoril::Runner {

/// The flow as a graph in Graphviz's DOT: a cluster for each layout, a box for each filter, an edge
/// with the names of both pins for each connection.
[[nodiscard]] std::string makeDotGraph(const FlowModel& model);

}  // namespace Quoril::Runner
