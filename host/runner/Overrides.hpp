#pragma once

#include "host/runner/FlowModel.hpp"
#include "host/runner/Problems.hpp"

#include <string>
#include <vector>

namespace Quoril::Runner {

/// A setting "PROPERTY=VALUE", split at the first '='.
/// @throws Poco::DataFormatException if there is no '=' or no name before it
[[nodiscard]] PropertyEntry parseSetting(const std::string& text, const Place& place);

/// Puts "FILTER.PROPERTY=VALUE" settings of the command line into the model: a property that the
/// flow file sets keeps its place in the order, any other is set after the filter's others. The
/// last of several settings of a property counts.
void applyOverrides(const std::vector<std::string>& settings, FlowModel& model, Problems& problems);

/// Adds the plug-ins of --plugin options, relative to the current folder, before those of the flow
/// file.
void addPlugins(const std::vector<std::string>& paths, FlowModel& model);

}  // namespace Quoril::Runner
