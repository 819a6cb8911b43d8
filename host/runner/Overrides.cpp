#include "host/runner/Overrides.hpp"

#include "host/runner/ConnectionText.hpp"
#include "host/runner/Names.hpp"

#include <algorithm>

#include <Poco/Exception.h>
#include <fmt/format.h>

namespace Quoril::Runner {

namespace {
void applyOverride(const std::string& text, FlowModel& model, Problems& problems) {
    const Place place{"--set '" + text + "'", 0, 0};
    try {
        PropertyEntry entry = parseSetting(text, place);
        const MemberName name = parseMemberName(entry.name);
        entry.name.text = name.member;
        FilterEntry* filter = model.findFilter(name.filter);
        if (filter == nullptr) {
            problems.add(place, fmt::format("there is no filter '{}'{}", name.filter,
                                            suggestName(name.filter, model.getFilterNames())));
            return;
        }
        const auto same = std::find_if(
            filter->properties.begin(), filter->properties.end(),
            [&](const PropertyEntry& present) { return present.name.text == name.member; });
        if (same != filter->properties.end())
            *same = entry;
        else
            filter->properties.push_back(entry);
    } catch (const Poco::DataFormatException& error) {
        problems.add(place, error.message());
    }
}
}  // namespace

PropertyEntry parseSetting(const std::string& text, const Place& place) {
    const std::size_t equals = text.find('=');
    if (equals == std::string::npos || equals == 0)
        throw Poco::DataFormatException("'" + text + "' is not of the form NAME=VALUE");
    return {{text.substr(0, equals), place}, {text.substr(equals + 1), place}};
}

void applyOverrides(const std::vector<std::string>& settings, FlowModel& model,
                    Problems& problems) {
    for (const std::string& setting : settings)
        applyOverride(setting, model, problems);
}

void addPlugins(const std::vector<std::string>& paths, FlowModel& model) {
    std::vector<PluginEntry> entries;
    entries.reserve(paths.size());
    for (const std::string& path : paths)
        entries.push_back({{path, {"--plugin", 0, 0}}, {}});
    model.plugins.insert(model.plugins.begin(), entries.begin(), entries.end());
}

}  // namespace Quoril::Runner
