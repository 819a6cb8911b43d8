#pragma once

#include "framework/Export.hpp"

#include <memory>
#include <string>
#include <vector>

namespace Quoril::Core {

class AbstractFilterFactory;
class Filter;
class Plugin;

/// The installed plug-ins and, through them, the filter classes. All operations may be called from
/// any thread.
class QUORIL_CORE_API PluginManager {
 public:
    PluginManager();
    ~PluginManager();
    PluginManager(const PluginManager&) = delete;
    PluginManager& operator=(const PluginManager&) = delete;

    /// @throws Poco::ExistsException if a plug-in of that name, or a filter class of the plug-in's,
    ///         is installed already; the plug-in is not installed then
    void installPlugin(Plugin& plugin);

    /// Destroys the plug-in's filters, then withdraws its factories. A plug-in that is not
    /// installed is ignored.
    /// @throws whatever the plug-in's uninstall() throws; the plug-in is withdrawn all the same
    void uninstallPlugin(Plugin& plugin);

    /// In the order of installation.
    [[nodiscard]] std::vector<Plugin*> getPlugins() const;
    /// In the order of installation and, within a plug-in, of registration.
    [[nodiscard]] std::vector<AbstractFilterFactory*> getFilterFactories() const;
    /// The factory of that filter class, or null.
    [[nodiscard]] AbstractFilterFactory* findFilterFactory(const std::string& className) const;

    /// For DefaultPlugin::install() and uninstall().
    void addFilterFactory(AbstractFilterFactory& factory);
    void removeFilterFactory(AbstractFilterFactory& factory);

 private:
    struct Impl;
    std::unique_ptr<Impl> impl_;
};

}  // namespace Quoril::Core
