#include "framework/PluginManager.hpp"

#include "framework/AbstractFactory.hpp"
#include "framework/Plugin.hpp"
#include "host/EditGate.hpp"
#include "host/FlowRegistry.hpp"

#include <algorithm>
#include <mutex>

#include <Poco/Exception.h>

namespace Quoril::Core {

namespace {

/// A plug-in with the factories that it offered while it was installed.
struct Installed {
    Plugin* plugin = nullptr;
    std::vector<AbstractFilterFactory*> factories;
};

}  // namespace

struct PluginManager::Impl {
    // Short and never held while anything of a plug-in or a filter runs; plug-ins come and go
    // under the edit gate.
    mutable std::mutex mutex;
    std::vector<Installed> installed;
    /// The plug-in that is being installed; factories that come without one are in front.
    Plugin* current = nullptr;

    [[nodiscard]] auto locate(const Plugin* plugin) {
        return std::find_if(installed.begin(), installed.end(),
                            [&](const Installed& entry) { return entry.plugin == plugin; });
    }

    [[nodiscard]] AbstractFilterFactory* findFactory(const std::string& className) const {
        for (const Installed& entry : installed)
            for (AbstractFilterFactory* factory : entry.factories)
                if (className == factory->name()) return factory;
        return nullptr;
    }

    void enter(Plugin& plugin) {
        const std::lock_guard lock(mutex);
        for (const Installed& entry : installed)
            if (entry.plugin != nullptr && entry.plugin->getName() == plugin.getName())
                throw Poco::ExistsException("Plug-in '" + plugin.getName() +
                                            "' is installed already");
        installed.push_back({&plugin, {}});
        current = &plugin;
    }

    void setCurrent(Plugin* plugin) {
        const std::lock_guard lock(mutex);
        current = plugin;
    }

    void withdraw(const Plugin& plugin) {
        const std::lock_guard lock(mutex);
        const auto found = locate(&plugin);
        if (found != installed.end()) installed.erase(found);
    }
};

PluginManager::PluginManager() : impl_(std::make_unique<Impl>()) {}
PluginManager::~PluginManager() = default;

void PluginManager::installPlugin(Plugin& plugin) {
    const EditGate gate;
    impl_->enter(plugin);
    try {
        plugin.install();
    } catch (...) {
        impl_->setCurrent(nullptr);
        impl_->withdraw(plugin);
        throw;
    }
    impl_->setCurrent(nullptr);
}

void PluginManager::uninstallPlugin(Plugin& plugin) {
    const EditGate gate;
    std::vector<AbstractFilterFactory*> factories;
    {
        const std::lock_guard lock(impl_->mutex);
        const auto found = impl_->locate(&plugin);
        if (found == impl_->installed.end()) return;
        factories = found->factories;
    }
    FlowRegistry::instance().removeFiltersOf(factories);
    try {
        plugin.uninstall();
    } catch (...) {
        // Its code may be about to go: nothing of it must stay, whatever it says.
        impl_->withdraw(plugin);
        throw;
    }
    impl_->withdraw(plugin);
}

std::vector<Plugin*> PluginManager::getPlugins() const {
    const std::lock_guard lock(impl_->mutex);
    std::vector<Plugin*> plugins;
    for (const Installed& entry : impl_->installed)
        if (entry.plugin != nullptr) plugins.push_back(entry.plugin);
    return plugins;
}

std::vector<AbstractFilterFactory*> PluginManager::getFilterFactories() const {
    const std::lock_guard lock(impl_->mutex);
    std::vector<AbstractFilterFactory*> factories;
    for (const Installed& entry : impl_->installed)
        factories.insert(factories.end(), entry.factories.begin(), entry.factories.end());
    return factories;
}

AbstractFilterFactory* PluginManager::findFilterFactory(const std::string& className) const {
    const std::lock_guard lock(impl_->mutex);
    return impl_->findFactory(className);
}

void PluginManager::addFilterFactory(AbstractFilterFactory& factory) {
    const EditGate gate;
    const std::lock_guard lock(impl_->mutex);
    if (impl_->findFactory(factory.name()) != nullptr)
        throw Poco::ExistsException("Filter class '" + std::string(factory.name()) +
                                    "' is offered already");
    auto home = impl_->locate(impl_->current);
    if (home == impl_->installed.end())
        home = impl_->installed.insert(impl_->installed.begin(), Installed{});
    home->factories.push_back(&factory);
}

void PluginManager::removeFilterFactory(AbstractFilterFactory& factory) {
    const EditGate gate;
    FlowRegistry::instance().removeFiltersOf({&factory});
    const std::lock_guard lock(impl_->mutex);
    for (Installed& entry : impl_->installed)
        std::erase(entry.factories, &factory);
}

}  // namespace Quoril::Core
