// A module whose plug-in neither takes itself out of the host at the stop nor ever ends.

#include "framework/FilterFactory.hpp"
#include "framework/FlowManager.hpp"
#include "framework/Plugin.hpp"
#include "framework/PluginManager.hpp"

#include <new>
#include <stdexcept>

using namespace Quoril::Core;

namespace {

class StubbornFilter final : public Filter {
 public:
    static constexpr const char* kClassName = "StubbornFilter";
    explicit StubbornFilter(const std::string& name) : Filter(name, true) {}
    void process() override {}
    [[nodiscard]] const char* getClassName() const override { return kClassName; }
};

class StubbornPlugin final : public Plugin {
 public:
    StubbornPlugin() : Plugin("Stubborn") {}
    void install() override { manager().addFilterFactory(factory_); }
    void uninstall() override { manager().removeFilterFactory(factory_); }
    [[nodiscard]] const PluginMetaData& getMetaData() const override { return metaData_; }

    static PluginManager& manager() { return FlowManager::instance().getPluginManager(); }

 private:
    PluginMetaData metaData_;
    FilterFactory<StubbornFilter> factory_{"Stubborn", ComponentVersion("1")};
};

// Memory of the module itself, whose object no destructor ends when the module goes.
alignas(StubbornPlugin) unsigned char place[sizeof(StubbornPlugin)];

}  // namespace

QUORIL_MODULE_EXPORT void dllStartPlugin() {
    StubbornPlugin::manager().installPlugin(*new (place) StubbornPlugin);
}
QUORIL_MODULE_EXPORT void dllStopPlugin() {
    throw std::runtime_error("I will not stop");
}
QUORIL_MODULE_EXPORT const char* dllGetQuorilVersion() {
    return "0.10.0";
}
