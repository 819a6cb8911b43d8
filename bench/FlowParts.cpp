#include "bench/FlowParts.hpp"

#include "framework/AbstractProperty.hpp"
#include "framework/PropertyBag.hpp"
#include "host/PluginLoader.hpp"
#include "host/filters/BuiltinPlugin.hpp"

#include <chrono>
#include <thread>

#include <Poco/Exception.h>

namespace Bench {

using Quoril::Core::AbstractProperty;
using Quoril::Core::Filter;
using Quoril::Core::Flow;

void loadFilters() {
    static Quoril::Core::PluginLoader loader;
    Quoril::Core::installBuiltinPlugin();
    loader.load(QUORIL_BENCH_MODULE);
}

void apply(Filter& filter, const Settings& settings) {
    for (const auto& [name, text] : settings) {
        const AbstractProperty* property = filter.getPropertyBag()->find(name);
        if (property == nullptr) throw Poco::NotFoundException(name);
        property->deSerialize(text);
    }
}

void connect(Flow& flow, Filter& from, Filter& to,
             const std::vector<std::pair<std::string, std::string>>& pins) {
    for (const auto& [output, input] : pins)
        flow.connect(*from.findOutputPin(output), *to.findInputPin(input));
}

void requireNothingLost(const Flow& flow) {
    for (const Quoril::Core::PinReport& report : flow.getPinReports())
        if (report.bufferSize > 1 && report.counters.overwritten > 0)
            throw Poco::DataException("rows were lost");
}

void waitUntil(const std::function<bool()>& condition, const std::function<void()>& look) {
    while (!condition()) {
        std::this_thread::sleep_for(std::chrono::milliseconds(1));
        if (look) look();
    }
}

}  // namespace Bench
