#pragma once

#include "host/Flow.hpp"
#include "host/PluginLoader.hpp"

namespace Quoril::Runner {

/// The plug-ins and the flow of one run; the flow goes before the plug-ins that made its filters.
struct Session {
    Core::PluginLoader loader;
    Core::Flow flow;
};

}  // namespace Quoril::Runner
