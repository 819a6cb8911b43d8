#include "host/filters/BuiltinPlugin.hpp"

#include "framework/FilterFactory.hpp"
#include "framework/FlowManager.hpp"
#include "framework/PluginManager.hpp"
#include "host/PluginLoader.hpp"
#include "host/filters/FilterCsvSource.hpp"
#include "host/filters/FilterImuSimulator.hpp"
#include "host/filters/FilterMatrixSource.hpp"
#include "host/filters/FilterProbe.hpp"

#include <algorithm>
#include <memory>
#include <mutex>

#include <Poco/Environment.h>

namespace Quoril::Core {
namespace {

template <class T>
std::unique_ptr<AbstractFilterFactory> makeFactory() {
    return std::make_unique<FilterFactory<T>>(BuiltinPlugin::kName, ComponentVersion(kHostVersion));
}

}  // namespace

BuiltinPlugin::BuiltinPlugin() : DefaultPlugin(kName, kHostVersion) {
    PluginMetaData& data = metaData();
    data.version = kHostVersion;
    data.hostVersion = kHostVersion;
    data.name = kName;
    data.description = "Sources of samples and a probe, built into the host";
    data.platform = Poco::Environment::osName() + " " + Poco::Environment::osArchitecture();
    data.buildDate = QUORIL_BUILD_DATE;
    addFilterFactory(makeFactory<FilterCsvSource>());
    addFilterFactory(makeFactory<FilterImuSimulator>());
    addFilterFactory(makeFactory<FilterMatrixSource>());
    addFilterFactory(makeFactory<FilterProbe>());
}

BuiltinPlugin::~BuiltinPlugin() = default;

void installBuiltinPlugin() {
    static BuiltinPlugin plugin;
    static std::mutex mutex;
    const std::lock_guard lock(mutex);
    PluginManager& manager = FlowManager::instance().getPluginManager();
    const std::vector<Plugin*> plugins = manager.getPlugins();
    if (std::find(plugins.begin(), plugins.end(), &plugin) == plugins.end())
        manager.installPlugin(plugin);
}

}  // namespace Quoril::Core
