#include "framework/DefaultPlugin.hpp"
#include "framework/FilterFactory.hpp"
#include "framework/FlowManager.hpp"
#include "framework/InputPin.hpp"
#include "framework/OutputPin.hpp"
#include "framework/PluginManager.hpp"
#include "framework/RangeProperty.hpp"

#include <memory>

using namespace Quoril::Core;

namespace {

class FilterOfModule final : public Filter {
 public:
    static constexpr const char* kClassName = "FilterOfModule";
    explicit FilterOfModule(const std::string& name) : Filter(name, true) {
        getPropertyBag()->registerProperty("Gain", gain_);
    }
    void process() override {
        while (input_.fetch()) {
            const auto* sample = input_.take();
            output_.getValue() = sample->value * gain_.get();
            output_.push(sample->timeStamp);
        }
    }
    [[nodiscard]] const char* getClassName() const override { return kClassName; }

 private:
    InputPin<Eigen::MatrixXd> input_{"input", this};
    OutputPin<Eigen::MatrixXd> output_{"output", this};
    RangeProperty<int> gain_{"Gain", getPropertyBag(), 2};
};

class PluginOfModule final : public DefaultPlugin {
 public:
    PluginOfModule() : DefaultPlugin("GoodModule", "1.2.3") {
        addFilterFactory(std::make_unique<FilterFactory<FilterOfModule>>(
            getName(), ComponentVersion(getVersion())));
    }
};

std::unique_ptr<PluginOfModule> plugin;

}  // namespace

QUORIL_MODULE_EXPORT void dllStartPlugin() {
    if (plugin) return;
    plugin = std::make_unique<PluginOfModule>();
    FlowManager::instance().getPluginManager().installPlugin(*plugin);
}

QUORIL_MODULE_EXPORT void dllStopPlugin() {
    if (!plugin) return;
    FlowManager::instance().getPluginManager().uninstallPlugin(*plugin);
    plugin.reset();
}

QUORIL_MODULE_EXPORT const char* dllGetQuorilVersion() {
    return "0.10.0";
}
