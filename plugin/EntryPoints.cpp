#include "framework/FlowManager.hpp"
#include "framework/PluginManager.hpp"
#include "plugin/SensorFilePlugin.hpp"

namespace {

// The one plug-in of the module; null while none is installed. Not a smart pointer: only the host
// may end its life, and not the order in which a process ends its static objects.
SensorFilePlugin* thePlugin = nullptr;

Quoril::Core::PluginManager& pluginManager() {
    return Quoril::Core::FlowManager::instance().getPluginManager();
}

}  // namespace

/// Installs the module's plug-in in the host; nothing happens when it is there already. Start and
/// stop are called by one thread.
/// @throws whatever the host throws to refuse the plug-in, which dllStopPlugin() then removes
QUORIL_MODULE_EXPORT void dllStartPlugin() {
    if (thePlugin != nullptr) return;
    // Stored before the host is asked: a plug-in that was refused must be found by the stop.
    thePlugin = new SensorFilePlugin;
    pluginManager().installPlugin(*thePlugin);
}

/// Takes the plug-in back, with its filters; nothing happens when there is none.
QUORIL_MODULE_EXPORT void dllStopPlugin() {
    if (thePlugin == nullptr) return;
    pluginManager().uninstallPlugin(*thePlugin);
    delete thePlugin;
    thePlugin = nullptr;
}

/// The version of the host framework that the module is built for.
QUORIL_MODULE_EXPORT const char* dllGetQuorilVersion() {
    return SensorFilePlugin::kHostVersion;
}
