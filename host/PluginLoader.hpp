#pragma once

#include "framework/Export.hpp"

#include <memory>
#include <string>
#include <vector>

namespace Quoril::Core {

class Plugin;

/// The host framework version that modules must have been built for.
inline constexpr const char* kHostVersion = "0.10.0";

/// Loads module files and starts their plug-ins through the three entry points dllStartPlugin,
/// dllStopPlugin and dllGetQuorilVersion. Modules are unloaded in the reverse order of loading.
class QUORIL_CORE_API PluginLoader {
 public:
    PluginLoader();
    /// Unloads what is still loaded.
    ~PluginLoader();
    PluginLoader(const PluginLoader&) = delete;
    PluginLoader& operator=(const PluginLoader&) = delete;

    /// Loads the module at the path, asks its version, starts it. A module that is loaded already
    /// (the same file) is left alone.
    /// @throws Poco::LibraryLoadException if the file cannot be loaded, lacks an entry point, or
    ///         was built for another version of the framework; the text names path and cause
    void load(const std::string& path);

    /// Stops the module's plug-in (which destroys its filters) and unloads the file.
    /// @throws Poco::NotFoundException if it is not loaded
    void unload(const std::string& path);

    /// Paths of the loaded modules, in order of loading.
    [[nodiscard]] std::vector<std::string> getPaths() const;

 private:
    struct Impl;
    std::unique_ptr<Impl> impl_;
};

}  // namespace Quoril::Core
