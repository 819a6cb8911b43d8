#include "framework/DefaultPlugin.hpp"

#include "framework/FlowManager.hpp"
#include "framework/PluginManager.hpp"

#include <utility>

namespace Quoril::Core {

DefaultPlugin::DefaultPlugin(const std::string& name, const std::string& version)
    : Plugin(name), version_(version) {
    metaData_.name = name;
    metaData_.version = version;
}

DefaultPlugin::~DefaultPlugin() {
    // A plug-in that goes without a word leaves neither filters nor factories behind.
    FlowManager::instance().getPluginManager().uninstallPlugin(*this);
}

void DefaultPlugin::install() {
    for (const auto& factory : factories_)
        FlowManager::instance().getPluginManager().addFilterFactory(*factory);
}

void DefaultPlugin::uninstall() {
    for (const auto& factory : factories_)
        FlowManager::instance().getPluginManager().removeFilterFactory(*factory);
}

const PluginMetaData& DefaultPlugin::getMetaData() const {
    return metaData_;
}

void DefaultPlugin::addFilterFactory(std::unique_ptr<AbstractFilterFactory> factory) {
    factories_.push_back(std::move(factory));
}

}  // namespace Quoril::Core
