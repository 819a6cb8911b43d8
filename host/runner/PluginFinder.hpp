#pragma once

#include "host/runner/FlowModel.hpp"
#include "host/runner/Problems.hpp"

#include <string>
#include <vector>

namespace Quoril::Core {
class PluginLoader;
}

namespace Quoril::Runner {

/// Where the module file of a plug-in may be, in the order of looking: a bare name beside the
/// program, a path as it is (relative to its base folder); once as written and once with the
/// system's ending of module files. Always absolute paths, so that nothing else is searched.
[[nodiscard]] std::vector<std::string> listCandidates(const PluginEntry& entry,
                                                      const std::string& programFolder);

/// Loads the plug-ins that the user named, in order, each from the first file that exists.
void loadPlugins(const std::vector<PluginEntry>& entries, const std::string& programFolder,
                 Core::PluginLoader& loader, Problems& problems);

}  // namespace Quoril::Runner
