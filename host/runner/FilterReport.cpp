#include "host/runner/FilterReport.hpp"

#include "framework/AbstractFactory.hpp"
#include "framework/AbstractInputPin.hpp"
#include "framework/AbstractOutputPin.hpp"
#include "framework/Filter.hpp"
#include "framework/FlowManager.hpp"
#include "framework/PluginManager.hpp"
#include "host/runner/JsonText.hpp"
#include "text/VisibleText.hpp"

#include <algorithm>

#include <fmt/format.h>

namespace Quoril::Runner {

namespace {
using Json = nlohmann::ordered_json;

std::string describeRange(const PropertyDescription& property) {
    if (!property.entries.empty()) return fmt::format("{}", fmt::join(property.entries, ", "));
    if (property.kind != PropertyKind::kRange) return {};
    const auto& range = *property.range;
    return fmt::format("{} to {}, step {}", range.minimum, range.maximum, range.step);
}

std::string describeWritability(const PropertyDescription& property) {
    std::string text = property.isWritable ? "" : "read-only";
    if (!property.isPersistent && property.kind != PropertyKind::kCommand)
        text += text.empty() ? "switch" : ", switch";
    return text;
}

Json toJson(const PropertyDescription& property) {
    Json json;
    json["name"] = property.name;
    json["kind"] = toText(property.kind);
    if (property.kind != PropertyKind::kCommand) json["default"] = property.value;
    if (property.range)
        json["range"] = {{"minimum", property.range->minimum},
                         {"maximum", property.range->maximum},
                         {"step", property.range->step}};
    if (property.kind == PropertyKind::kChoice) json["entries"] = property.entries;
    json["writable"] = property.isWritable;
    json["saved"] = property.isPersistent;
    return json;
}

std::size_t longestName(const FilterReport& report) {
    std::size_t longest = 4;
    for (const PropertyDescription& property : report.properties)
        longest = std::max(longest, property.name.size());
    return longest;
}

std::string quoteDefault(const PropertyDescription& property) {
    const bool isText =
        property.kind == PropertyKind::kText || property.kind == PropertyKind::kFileName;
    return isText ? "'" + property.value + "'" : property.value;
}
}  // namespace

FilterReport makeFilterReport(const Core::Filter& filter) {
    FilterReport report;
    report.className = filter.getClassName();
    const auto* factory =
        Core::FlowManager::instance().getPluginManager().findFilterFactory(report.className);
    if (factory != nullptr) report.plugin = factory->getPluginName();
    for (const Core::AbstractInputPin* pin : filter.getInputPins())
        report.inputs.push_back({pin->getName(), pin->getBuffer().size, pin->getBuffer().isLifo});
    for (const Core::AbstractOutputPin* pin : filter.getOutputPins())
        report.outputs.push_back(pin->getName());
    for (const std::string& name : filter.getPropertyBag()->getNames())
        if (const Core::AbstractProperty* property = filter.getPropertyBag()->find(name))
            report.properties.push_back(describeProperty(*property));
    return report;
}

std::string toText(const FilterReport& report) {
    std::string text = fmt::format("{} (plug-in {})\n", report.className, report.plugin);
    text += "\ninput pins:\n";
    for (const FilterReport::Input& input : report.inputs)
        text += fmt::format("  {}\n", Texts::toVisible(input.name));
    if (report.inputs.empty()) text += "  none\n";
    text += "\noutput pins:\n";
    for (const std::string& output : report.outputs)
        text += fmt::format("  {}\n", Texts::toVisible(output));
    if (report.outputs.empty()) text += "  none\n";
    text += "\nproperties:\n";
    const std::size_t width = longestName(report);
    for (const PropertyDescription& property : report.properties) {
        std::string line = fmt::format("  {:<{}}  {:<16}  {}", property.name, width,
                                       toText(property.kind), quoteDefault(property));
        for (const std::string& more : {describeRange(property), describeWritability(property)})
            if (!more.empty()) line += "  [" + more + "]";
        text += Texts::toVisible(line.substr(0, line.find_last_not_of(' ') + 1)) + "\n";
    }
    return text;
}

std::string toJsonText(const FilterReport& report) {
    Json json;
    json["class"] = report.className;
    json["plugin"] = report.plugin;
    json["inputs"] = Json::array();
    for (const FilterReport::Input& input : report.inputs)
        json["inputs"].push_back(
            {{"name", input.name}, {"buffer", input.bufferSize}, {"lifo", input.isLifo}});
    json["outputs"] = Json::array();
    for (const std::string& output : report.outputs)
        json["outputs"].push_back({{"name", output}});
    json["properties"] = Json::array();
    for (const PropertyDescription& property : report.properties)
        json["properties"].push_back(toJson(property));
    return dumpJson(json);
}

}  // namespace Quoril::Runner
