#include "host/runner/PluginReport.hpp"

#include "framework/AbstractFactory.hpp"
#include "framework/Plugin.hpp"
#include "framework/PluginManager.hpp"
#include "host/runner/JsonText.hpp"
#include "text/VisibleText.hpp"

#include <utility>

#include <fmt/format.h>

namespace Quoril::Runner {

namespace {
using Json = nlohmann::ordered_json;

/// Names for people, and what they name.
std::vector<std::pair<const char*, const std::string*>> listFields(
    const Core::PluginMetaData& data) {
    return {{"name", &data.name},
            {"version", &data.version},
            {"description", &data.description},
            {"host version", &data.hostVersion},
            {"platform", &data.platform},
            {"build date", &data.buildDate}};
}

Json toJson(const PluginReport& report) {
    const Core::PluginMetaData& data = report.metaData;
    return {{"plugin", report.name},           {"name", data.name},
            {"version", data.version},         {"description", data.description},
            {"hostVersion", data.hostVersion}, {"platform", data.platform},
            {"buildDate", data.buildDate},     {"filters", report.filterClasses}};
}
}  // namespace

std::vector<PluginReport> makePluginReports(const Core::PluginManager& plugins) {
    std::vector<PluginReport> reports;
    for (const Core::Plugin* plugin : plugins.getPlugins()) {
        PluginReport report{plugin->getName(), plugin->getMetaData(), {}};
        for (const Core::AbstractFilterFactory* factory : plugins.getFilterFactories())
            if (factory->getPluginName() == report.name)
                report.filterClasses.emplace_back(factory->name());
        reports.push_back(std::move(report));
    }
    return reports;
}

std::string toText(const std::vector<PluginReport>& reports) {
    std::string text;
    for (const PluginReport& report : reports) {
        text += fmt::format("{}{}\n", text.empty() ? "" : "\n", Texts::toVisible(report.name));
        for (const auto& [name, value] : listFields(report.metaData))
            if (!value->empty())
                text += fmt::format("  {:<13} {}\n", name, Texts::toVisible(*value));
        for (const std::string& className : report.filterClasses)
            text += fmt::format("  {:<13} {}\n", "filter", className);
    }
    return text;
}

std::string toJsonText(const std::vector<PluginReport>& reports) {
    Json json;
    json["plugins"] = Json::array();
    for (const PluginReport& report : reports)
        json["plugins"].push_back(toJson(report));
    return dumpJson(json);
}

}  // namespace Quoril::Runner
