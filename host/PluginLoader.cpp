#include "host/PluginLoader.hpp"

#include "framework/FlowManager.hpp"
#include "framework/PluginManager.hpp"
#include "host/EditGate.hpp"

#include <algorithm>
#include <exception>
#include <filesystem>
#include <utility>

#include <Poco/Exception.h>
#include <Poco/SharedLibrary.h>

namespace Quoril::Core {

namespace {

namespace fs = std::filesystem;

[[noreturn]] void refuse(const std::string& path, const std::string& cause) {
    throw Poco::LibraryLoadException("Cannot load module '" + path + "': " + cause);
}

/// One path for one file, however it was written.
fs::path toIdentity(const std::string& path) {
    std::error_code error;
    fs::path identity = fs::weakly_canonical(path, error);
    return error ? fs::path(path) : identity;
}

/// What went wrong, as text: an exception that the module threw must not outlive the module.
template <class Action>
std::string tryTo(Action action) {
    try {
        action();
        return {};
    } catch (const Poco::Exception& error) {
        return error.displayText();
    } catch (const std::exception& error) {
        return error.what();
    } catch (...) {
        return "unknown error";
    }
}

/// A loaded file with its entry points.
class Module {
 public:
    explicit Module(const std::string& path) : path_(path), identity_(toIdentity(path)) {
        std::error_code error;
        const fs::file_status status = fs::status(path, error);
        if (!fs::exists(status)) refuse(path, "there is no such file");
        if (fs::is_directory(status)) refuse(path, "it is a folder");
        // A pipe would make the system wait.
        if (!fs::is_regular_file(status)) refuse(path, "it is no regular file");
        // An absolute path, since the system searches elsewhere for a name without a folder.
        const std::string file = fs::absolute(path).string();
        const std::string cause =
            tryTo([&] { library_.load(file, Poco::SharedLibrary::SHLIB_LOCAL); });
        if (!cause.empty()) refuse(path, "it is no library that can be loaded (" + cause + ")");
        try {
            start_ = find<void()>("dllStartPlugin");
            stop_ = find<void()>("dllStopPlugin");
            version_ = find<const char*()>("dllGetQuorilVersion");
            checkVersion();
            start();
        } catch (...) {
            library_.unload();
            throw;
        }
    }

    Module(const Module&) = delete;
    Module& operator=(const Module&) = delete;

    ~Module() {
        // A plug-in that refuses to stop is unloaded all the same: nothing else is left to do.
        stop();
        library_.unload();
    }

    [[nodiscard]] const std::string& getPath() const noexcept { return path_; }
    [[nodiscard]] const fs::path& getIdentity() const noexcept { return identity_; }

 private:
    template <class Function>
    Function* find(const char* name) {
        if (!library_.hasSymbol(name))
            refuse(path_, std::string("it has no entry point '") + name + "'");
        return reinterpret_cast<Function*>(library_.getSymbol(name));
    }

    void checkVersion() const {
        const char* version = version_();
        const std::string builtFor = version == nullptr ? "" : version;
        if (builtFor != kHostVersion)
            refuse(path_, "it was built for version '" + builtFor +
                              "' of the framework, this host is version '" + kHostVersion + "'");
    }

    void start() {
        // Nobody else installs plug-ins meanwhile.
        const EditGate gate;
        const std::vector<Plugin*> before = manager().getPlugins();
        const std::string cause = tryTo(start_);
        for (Plugin* plugin : manager().getPlugins())
            if (!contains(before, plugin)) plugins_.push_back(plugin);
        if (cause.empty()) return;
        // A failed start may have left the plug-in half installed.
        stop();
        refuse(path_, "its plug-in did not start (" + cause + ")");
    }

    void stop() {
        const EditGate gate;
        tryTo(stop_);
        // What the module left behind would call code that is no longer there.
        for (Plugin* plugin : plugins_)
            if (contains(manager().getPlugins(), plugin))
                tryTo([plugin] { manager().uninstallPlugin(*plugin); });
    }

    static PluginManager& manager() { return FlowManager::instance().getPluginManager(); }

    static bool contains(const std::vector<Plugin*>& plugins, const Plugin* plugin) {
        return std::find(plugins.begin(), plugins.end(), plugin) != plugins.end();
    }

    const std::string path_;
    const fs::path identity_;
    Poco::SharedLibrary library_;
    std::vector<Plugin*> plugins_;  ///< installed by the start
    void (*start_)() = nullptr;
    void (*stop_)() = nullptr;
    const char* (*version_)() = nullptr;
};

}  // namespace

struct PluginLoader::Impl {
    std::vector<std::unique_ptr<Module>> modules;

    [[nodiscard]] auto locate(const std::string& path) {
        return std::find_if(modules.begin(), modules.end(),
                            [identity = toIdentity(path)](const auto& module) {
                                return module->getIdentity() == identity;
                            });
    }
};

PluginLoader::PluginLoader() : impl_(std::make_unique<Impl>()) {}

PluginLoader::~PluginLoader() {
    while (!impl_->modules.empty())
        impl_->modules.pop_back();
}

void PluginLoader::load(const std::string& path) {
    if (impl_->locate(path) != impl_->modules.end()) return;
    impl_->modules.push_back(std::make_unique<Module>(path));
}

void PluginLoader::unload(const std::string& path) {
    const auto found = impl_->locate(path);
    if (found == impl_->modules.end())
        throw Poco::NotFoundException("Module '" + path + "' is not loaded");
    impl_->modules.erase(found);
}

std::vector<std::string> PluginLoader::getPaths() const {
    std::vector<std::string> paths;
    for (const auto& module : impl_->modules)
        paths.push_back(module->getPath());
    return paths;
}

}  // namespace Quoril::Core
