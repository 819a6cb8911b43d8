#include "host/runner/FlowReader.hpp"

#include "host/runner/ConnectionText.hpp"
#include "host/runner/Names.hpp"
#include "host/runner/TimeText.hpp"

#include <algorithm>
#include <filesystem>

#include <Poco/Exception.h>
#include <fmt/format.h>

namespace Quoril::Runner {

namespace {
const YamlNode* findKey(const YamlNode& map, const std::string& key) {
    for (const YamlEntry& entry : map.entries)
        if (entry.key.text == key) return &entry.value;
    return nullptr;
}

bool isName(const std::string& text) {
    return !text.empty() && text.find_first_not_of(
                                "abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ_-"
                                "0123456789") == std::string::npos;
}
}  // namespace

void FlowReader::read(const YamlNode& root) {
    if (!checkMap(root, "a flow file",
                  {"version", "plugins", "layouts", "filters", "connections", "script", "stop"}))
        return;
    readVersion(root);
    readList(root, "plugins", &FlowReader::readPlugin);
    readList(root, "layouts", &FlowReader::readLayout);
    readList(root, "filters", &FlowReader::readFilter);
    readList(root, "connections", &FlowReader::readConnection);
    readList(root, "script", &FlowReader::readAction);
    readList(root, "stop", &FlowReader::readStop);
    const YamlNode* filters = findKey(root, "filters");
    if (filters == nullptr) problems_.add(root.place, "a flow file needs 'filters'");
    if (filters != nullptr && filters->isList() && filters->items.empty())
        problems_.add(filters->place, "a flow needs at least one filter");
    if (model_.layouts.empty()) model_.layouts.push_back({{"main", root.place}, {}});
    std::stable_sort(model_.script.begin(), model_.script.end(),
                     [](const ScriptEntry& a, const ScriptEntry& b) { return a.at < b.at; });
}

void FlowReader::readVersion(const YamlNode& root) {
    const auto version = readRequired(root, "version", "a flow file");
    if (version && version->text != "1")
        problems_.add(version->place, "version '" + version->text +
                                          "' is not known; this program "
                                          "reads version 1");
}

void FlowReader::readPlugin(const YamlNode& node) {
    const auto path = readText(node, "a plug-in");
    if (!path) return;
    if (path->text.empty()) {
        problems_.add(path->place, "the path of a plug-in is empty");
        return;
    }
    model_.plugins.push_back({*path, std::filesystem::path(model_.path).parent_path().string()});
}

void FlowReader::readLayout(const YamlNode& node) {
    LayoutEntry layout;
    if (node.isScalar()) {
        const auto name = readText(node, "a layout");
        if (!name) return;
        layout.name = *name;
        if (!isName(layout.name.text)) {
            problems_.add(node.place, "'" + node.text +
                                          "' cannot be the name of a layout; use "
                                          "letters, digits, '_' and '-'");
            return;
        }
    } else {
        if (!checkMap(node, "a layout", {"name", "period"})) return;
        const auto name = readName(node, "a layout");
        if (const YamlNode* period = findKey(node, "period"))
            layout.period = readTime(*period, "period").value_or(layout.period);
        if (!name) return;
        layout.name = *name;
    }
    model_.layouts.push_back(layout);
}

void FlowReader::readFilter(const YamlNode& node) {
    if (!checkMap(node, "a filter", {"name", "class", "layout", "properties"})) return;
    FilterEntry filter;
    const auto name = readName(node, "a filter");
    const auto className = readRequired(node, "class", "a filter");
    if (const YamlNode* layout = findKey(node, "layout"))
        filter.layout = readText(*layout, "layout");
    if (name) filter.name = *name;
    if (const YamlNode* properties = findKey(node, "properties"))
        readProperties(*properties, filter);
    if (className) filter.className = *className;
    // A named filter without a class is kept, so that its connections are not told as wrong too.
    if (name) model_.filters.push_back(std::move(filter));
}

void FlowReader::readProperties(const YamlNode& node, FilterEntry& filter) {
    if (!node.isList()) {
        problems_.add(node.place,
                      "properties must be a list with one property an item, since their order "
                      "counts: '- Pins Number: 2'");
        return;
    }
    for (const YamlNode& item : node.items)
        readProperty(item, filter);
}

void FlowReader::readProperty(const YamlNode& node, FilterEntry& filter) {
    if (!node.isMap() || node.entries.size() != 1) {
        problems_.add(node.place, "a property must be one name with one value: '- Binary: true'");
        return;
    }
    const YamlEntry& entry = node.entries.front();
    const auto value = readText(entry.value, "property '" + entry.key.text + "'");
    if (!value) return;
    for (const PropertyEntry& earlier : filter.properties)
        if (earlier.name.text == entry.key.text) {
            problems_.add(entry.key.place, "property '" + entry.key.text +
                                               "' is set twice (first in line " +
                                               std::to_string(earlier.name.place.line) + ")");
            return;
        }
    filter.properties.push_back({{entry.key.text, entry.key.place}, *value});
}

void FlowReader::readConnection(const YamlNode& node) {
    if (node.isMap()) {
        readConnectionMap(node);
        return;
    }
    const auto text = readText(node, "a connection");
    if (!text) return;
    attempt(node.place, [&] { model_.connections.push_back(parseConnection(*text)); });
}

void FlowReader::readConnectionMap(const YamlNode& node) {
    // Unquoted, "a.b -> c.d {buffer: 64}" is a map in YAML.
    if (node.entries.size() == 1 && node.entries[0].key.text.find("->") != std::string::npos) {
        problems_.add(node.place, "a connection with settings needs quotation marks");
        return;
    }
    if (!checkMap(node, "a connection", {"from", "to", "buffer", "lifo"})) return;
    ConnectionEntry connection;
    const auto from = readRequired(node, "from", "a connection");
    const auto to = readRequired(node, "to", "a connection");
    bool isGood = from && to;
    if (from) isGood &= attempt(from->place, [&] { connection.from = parseMemberName(*from); });
    if (to) isGood &= attempt(to->place, [&] { connection.to = parseMemberName(*to); });
    if (const YamlNode* buffer = findKey(node, "buffer"))
        if (const auto text = readText(*buffer, "buffer"))
            attempt(text->place, [&] { connection.bufferSize = parseBufferSize(text->text); });
    if (const YamlNode* lifo = findKey(node, "lifo"))
        if (const auto text = readText(*lifo, "lifo"))
            attempt(text->place, [&] { connection.isLifo = parseTruth(text->text); });
    if (isGood) model_.connections.push_back(connection);
}

void FlowReader::readAction(const YamlNode& node) {
    if (!checkMap(node, "an action of the script", {"at", "set", "command"})) return;
    const auto atText = readRequired(node, "at", "an action of the script");
    std::optional<std::chrono::nanoseconds> at;
    if (atText) at = readTime(*findKey(node, "at"), "at");
    const YamlNode* set = findKey(node, "set");
    const YamlNode* command = findKey(node, "command");
    if ((set == nullptr) == (command == nullptr)) {
        problems_.add(node.place, "an action of the script needs either 'set' or 'command'");
        return;
    }
    ScriptEntry action;
    action.at = at.value_or(action.at);
    if (command != nullptr) {
        const auto text = readText(*command, "command");
        if (text && attempt(text->place, [&] { action.target = parseMemberName(*text); }))
            model_.script.push_back(action);
        return;
    }
    if (!set->isMap() || set->entries.empty()) {
        problems_.add(set->place, "'set' needs properties and values: {rec.Record: true}");
        return;
    }
    for (const YamlEntry& entry : set->entries) {
        action.value = readText(entry.value, "property '" + entry.key.text + "'");
        const Text name{entry.key.text, entry.key.place};
        if (action.value && attempt(name.place, [&] { action.target = parseMemberName(name); }))
            model_.script.push_back(action);
    }
}

void FlowReader::readStop(const YamlNode& node) {
    if (!checkMap(node, "a stop condition", {"for", "when", "finished"})) return;
    if (node.entries.size() != 1) {
        problems_.add(node.place, "a stop condition needs one of 'for', 'when' and 'finished'");
        return;
    }
    const YamlEntry& entry = node.entries.front();
    StopEntry stop;
    if (entry.key.text == "for") {
        stop.after = readTime(entry.value, "for");
        if (!stop.after) return;
    } else if (entry.key.text == "when") {
        readWhen(entry.value, stop);
        if (stop.when.empty()) return;
    } else {
        const bool isKnown = entry.key.text == "finished";
        const auto text = isKnown ? readText(entry.value, "finished") : std::nullopt;
        if (!text) return;
        if (text->text != "true")
            problems_.add(text->place, "'finished' can only be true; leave it out otherwise");
        stop.isWhenFinished = true;
    }
    model_.stop.push_back(stop);
}

void FlowReader::readWhen(const YamlNode& node, StopEntry& stop) {
    if (!node.isMap() || node.entries.empty()) {
        problems_.add(node.place, "'when' needs properties and values: {player.Replay: false}");
        return;
    }
    for (const YamlEntry& entry : node.entries) {
        const auto value = readText(entry.value, "property '" + entry.key.text + "'");
        const Text name{entry.key.text, entry.key.place};
        if (!value) continue;
        attempt(name.place, [&] { stop.when.push_back({parseMemberName(name), *value}); });
    }
}

void FlowReader::readList(const YamlNode& root, const std::string& key, Reader reader) {
    const YamlNode* list = findKey(root, key);
    if (list == nullptr) return;
    if (!list->isList()) {
        problems_.add(list->place, "'" + key + "' must be a list");
        return;
    }
    for (const YamlNode& item : list->items)
        (this->*reader)(item);
}

bool FlowReader::checkMap(const YamlNode& node, const std::string& what,
                          const std::vector<std::string>& keys) {
    if (!node.isMap()) {
        std::string list;
        for (const std::string& key : keys)
            list.append(list.empty() ? "" : ", ").append(key);
        problems_.add(node.place, what + " must be a map with keys of " + list);
        return false;
    }
    for (const YamlEntry& entry : node.entries) {
        const std::string& key = entry.key.text;
        if (std::find(keys.begin(), keys.end(), key) == keys.end())
            problems_.add(entry.key.place, fmt::format("unknown key '{}' of {}{}", key, what,
                                                       suggestName(key, keys)));
    }
    return true;
}

std::optional<Text> FlowReader::readText(const YamlNode& node, const std::string& what) {
    if (node.isBroken) return std::nullopt;
    if (node.isScalar()) return Text{node.text, node.place};
    const char* cause = node.kind == YamlNode::Kind::kNull
                            ? " has no value; write '' for the empty text"
                            : " must be a single value";
    problems_.add(node.place, what + cause);
    return std::nullopt;
}

std::optional<Text> FlowReader::readRequired(const YamlNode& map, const std::string& key,
                                             const std::string& what) {
    if (const YamlNode* node = findKey(map, key)) return readText(*node, "'" + key + "'");
    problems_.add(map.place, what + " needs '" + key + "'");
    return std::nullopt;
}

std::optional<Text> FlowReader::readName(const YamlNode& map, const std::string& what) {
    auto name = readRequired(map, "name", what);
    if (name && !isName(name->text)) {
        problems_.add(name->place, "'" + name->text + "' cannot be the name of " + what +
                                       "; use letters, digits, '_' and '-'");
        return std::nullopt;
    }
    return name;
}

std::optional<std::chrono::nanoseconds> FlowReader::readTime(const YamlNode& node,
                                                             const std::string& what) {
    std::optional<std::chrono::nanoseconds> time;
    if (const auto text = readText(node, "'" + what + "'"))
        attempt(text->place, [&] { time = parseTime(text->text); });
    return time;
}

bool FlowReader::attempt(const Place& place, const std::function<void()>& parser) {
    try {
        parser();
        return true;
    } catch (const Poco::DataFormatException& error) {
        problems_.add(place, error.message());
        return false;
    }
}

}  // namespace Quoril::Runner
