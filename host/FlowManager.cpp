#include "framework/FlowManager.hpp"

#include "framework/PluginManager.hpp"

namespace Quoril::Core {

struct FlowManager::Impl {
    mutable PluginManager pluginManager;
};

FlowManager::FlowManager() : impl_(std::make_unique<Impl>()) {}
FlowManager::~FlowManager() = default;

FlowManager& FlowManager::instance() {
    // Never destroyed: plug-ins with static lifetime are uninstalled at the process's end.
    static auto* const manager = new FlowManager();
    return *manager;
}

PluginManager& FlowManager::getPluginManager() const {
    return impl_->pluginManager;
}

}  // namespace Quoril::Core
