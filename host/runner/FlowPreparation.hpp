#pragma once

#include "host/runner/FlowModel.hpp"
#include "host/runner/Problems.hpp"

#include <string>
#include <vector>

namespace Quoril::Runner {

class FlowBuilder;
struct Session;

/// What the command line says of a flow.
struct FlowOptions {
    std::string path;
    std::vector<std::string> settings;  ///< FILTER.PROPERTY=VALUE
    std::vector<std::string> plugins;
};

/// Reads the flow file and applies the options; not to be used if there are errors.
[[nodiscard]] FlowModel readModel(const FlowOptions& options, Problems& problems);

/// Loads the plug-ins and builds the flow, as far as there are no errors.
void prepareFlow(const FlowModel& model, Session& session, FlowBuilder& builder,
                 Problems& problems);

}  // namespace Quoril::Runner
