#include "host/runner/InspectCommand.hpp"

#include "framework/AbstractFactory.hpp"
#include "framework/Filter.hpp"
#include "framework/FlowManager.hpp"
#include "framework/PluginManager.hpp"
#include "host/PluginLoader.hpp"
#include "host/filters/BuiltinPlugin.hpp"
#include "host/runner/Console.hpp"
#include "host/runner/ExceptionText.hpp"
#include "host/runner/ExitCode.hpp"
#include "host/runner/FilterReport.hpp"
#include "host/runner/Names.hpp"
#include "host/runner/Overrides.hpp"
#include "host/runner/Platform.hpp"
#include "host/runner/PluginFinder.hpp"
#include "host/runner/PluginReport.hpp"
#include "host/runner/PropertyText.hpp"

#include <functional>
#include <memory>
#include <ostream>

#include <fmt/format.h>

namespace Quoril::Runner {

namespace {
Core::PluginManager& plugins() {
    return Core::FlowManager::instance().getPluginManager();
}

/// A filter that goes back to its factory.
using OwnedFilter = std::unique_ptr<Core::Filter, std::function<void(Core::Filter*)>>;

OwnedFilter makeFilter(const std::string& className, Problems& problems) {
    Core::AbstractFilterFactory* factory = plugins().findFilterFactory(className);
    if (factory != nullptr)
        return {factory->create(className),
                [factory](Core::Filter* filter) { factory->destroy(filter); }};
    std::vector<std::string> names;
    for (const auto* each : plugins().getFilterFactories())
        names.emplace_back(each->name());
    problems.add(
        {}, "no loaded plug-in has a class '" + className + "'" + suggestName(className, names));
    return nullptr;
}

void applySetting(const std::string& text, Core::Filter& filter, Problems& problems) {
    const Place place{"--set '" + text + "'", 0, 0};
    try {
        const PropertyEntry entry = parseSetting(text, place);
        Core::AbstractProperty* property = filter.getPropertyBag()->find(entry.name.text);
        if (property == nullptr)
            throw Poco::DataFormatException(fmt::format(
                "class '{}' has no property '{}'{}", filter.getClassName(), entry.name.text,
                suggestName(entry.name.text, filter.getPropertyBag()->getNames())));
        setFromText(*property, entry.value.text);
    } catch (const Poco::Exception& error) {
        problems.add(place, describeException(error));
    }
}

void inspectClass(const InspectOptions& options, std::ostream& output, Problems& problems) {
    const OwnedFilter filter = makeFilter(options.className, problems);
    if (!filter) return;
    for (const std::string& setting : options.settings)
        applySetting(setting, *filter, problems);
    if (problems.hasErrors()) return;
    const FilterReport report = makeFilterReport(*filter);
    output << (options.isJson ? toJsonText(report) : toText(report));
}

void inspectPlugins(const InspectOptions& options, std::ostream& output) {
    const std::vector<PluginReport> reports = makePluginReports(plugins());
    output << (options.isJson ? toJsonText(reports) : toText(reports));
}
}  // namespace

int inspect(const InspectOptions& options, std::ostream& output, Console& console) {
    Problems problems;
    Core::PluginLoader loader;
    Core::installBuiltinPlugin();
    FlowModel model;
    addPlugins(options.plugins, model);
    loadPlugins(model.plugins, getProgramFolder(), loader, problems);
    if (!problems.hasErrors()) {
        if (options.className.empty())
            inspectPlugins(options, output);
        else
            inspectClass(options, output, problems);
    }
    if (!problems.getList().empty()) console.errorLines(problems.toText());
    return problems.getExitCode();
}

}  // namespace Quoril::Runner
