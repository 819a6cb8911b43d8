#include "fuzz/FlowTexts.hpp"

#include "fuzz/Harness.hpp"

#include <algorithm>
#include <set>
#include <string_view>
#include <vector>

#include <fmt/format.h>

namespace Fuzz {

namespace {

using namespace Quoril::Runner;

class Describer {
 public:
    explicit Describer(bool hasPlaces) : hasPlaces_(hasPlaces) {}

    std::string describe(const FlowModel& model) {
        for (const PluginEntry& plugin : model.plugins) {
            begin("plugin");
            add(plugin.path);
            add(plugin.baseFolder);
        }
        for (const LayoutEntry& layout : model.layouts) {
            begin("layout");
            add(layout.name);
            add(layout.period.count());
        }
        for (const FilterEntry& filter : model.filters)
            addFilter(filter);
        for (const ConnectionEntry& connection : model.connections) {
            begin("connection");
            add(connection.from);
            add(connection.to);
            add(connection.bufferSize ? static_cast<long long>(*connection.bufferSize) : -1);
            add(connection.isLifo ? static_cast<long long>(*connection.isLifo) : -1);
        }
        for (const ScriptEntry& action : model.script) {
            begin("action");
            add(action.at.count());
            add(action.target);
            if (action.value) add(*action.value);
        }
        for (const StopEntry& stop : model.stop)
            addStop(stop);
        return text_;
    }

 private:
    void addFilter(const FilterEntry& filter) {
        begin("filter");
        add(filter.name);
        add(filter.className);
        if (filter.layout) add(*filter.layout);
        for (const PropertyEntry& property : filter.properties) {
            begin("property");
            add(property.name);
            add(property.value);
        }
    }
    void addStop(const StopEntry& stop) {
        begin("stop");
        add(stop.after ? stop.after->count() : -1);
        add(static_cast<long long>(stop.isWhenFinished));
        for (const ValueCondition& condition : stop.when) {
            add(condition.property);
            add(condition.value);
        }
    }
    void begin(const char* what) {
        text_ += '\n';
        text_ += what;
    }
    void add(const std::string& text) {
        text_ += fmt::format(" {}:", text.size());
        text_ += text;
    }
    void add(long long number) { text_ += fmt::format(" {}", number); }
    void add(const Place& place) {
        if (hasPlaces_) add(place.toText());
    }
    void add(const Text& text) {
        add(text.text);
        add(text.place);
    }
    void add(const MemberName& name) {
        add(name.filter);
        add(name.member);
        add(name.place);
    }

    bool hasPlaces_;
    std::string text_;
};

std::string quote(std::string_view text) {
    std::string quoted = "\"";
    for (const char c : text) {
        const auto byte = static_cast<unsigned char>(c);
        if (c == '$')
            quoted += "$$";
        else if (c == '"' || c == '\\')
            quoted += std::string("\\") + c;
        else if (byte < 0x20 || byte == 0x7f)
            quoted += fmt::format("\\x{:02x}", byte);
        else
            quoted += c;
    }
    return quoted + '"';
}

std::string pair(const std::string& key, const std::string& value) {
    return "? " + quote(key) + " : " + quote(value);
}

std::string timeText(std::chrono::nanoseconds time) {
    return fmt::format("{}e-6ms", time.count());
}

std::string nameText(const MemberName& name) {
    return name.filter + "." + name.member;
}

std::string filterText(const FilterEntry& filter) {
    std::string text = "{name: " + quote(filter.name.text) +
                       ", class: " + quote(filter.className.text) + ", properties: [";
    for (const PropertyEntry& property : filter.properties)
        text += "{" + pair(property.name.text, property.value.text) + "},";
    text += "]";
    if (filter.layout) text += ", layout: " + quote(filter.layout->text);
    return text + "}";
}

std::string connectionText(const ConnectionEntry& connection) {
    std::string text =
        "{from: " + quote(nameText(connection.from)) + ", to: " + quote(nameText(connection.to));
    if (connection.bufferSize) text += fmt::format(", buffer: {}", *connection.bufferSize);
    if (connection.isLifo) text += fmt::format(", lifo: {}", *connection.isLifo);
    return text + "}";
}

std::string actionText(const ScriptEntry& action) {
    const std::string target = nameText(action.target);
    return "{at: " + timeText(action.at) + ", " +
           (action.value ? "set: {" + pair(target, action.value->text) + "}"
                         : "command: " + quote(target)) +
           "}";
}

std::string stopText(const StopEntry& stop) {
    if (stop.after) return "{for: " + timeText(*stop.after) + "}";
    if (stop.isWhenFinished) return "{finished: true}";
    std::string text = "{when: {";
    for (const ValueCondition& condition : stop.when)
        text += pair(nameText(condition.property), condition.value.text) + ",";
    return text + "}}";
}

template <class Entries, class ToText>
std::string sectionText(const std::string& name, const Entries& entries, ToText toText) {
    std::string text = name + ":";
    if (entries.empty()) text += " []";
    text += '\n';
    for (const auto& entry : entries)
        text += "  - " + toText(entry) + "\n";
    return text;
}

/// Times below can be written in milliseconds and read again to the nanosecond.
bool isExact(std::chrono::nanoseconds time) {
    return time.count() < (std::int64_t{1} << 50);
}

bool canBeWritten(const FlowModel& model) {
    constexpr std::size_t kMostEntries = 500;
    std::size_t count = model.plugins.size() + model.layouts.size() + model.filters.size() +
                        model.connections.size() + model.script.size() + model.stop.size();
    for (const FilterEntry& filter : model.filters)
        count += filter.properties.size();
    for (const StopEntry& stop : model.stop)
        count += stop.when.size();
    const auto isGood = [](const auto& entries, auto timeOf) {
        return std::all_of(entries.begin(), entries.end(),
                           [&](const auto& entry) { return isExact(timeOf(entry)); });
    };
    return count <= kMostEntries &&
           isGood(model.layouts, [](const LayoutEntry& layout) { return layout.period; }) &&
           isGood(model.script, [](const ScriptEntry& action) { return action.at; }) &&
           isGood(model.stop, [](const StopEntry& stop) {
               return stop.after.value_or(std::chrono::nanoseconds(0));
           });
}

bool isName(const std::string& name) {
    return !name.empty() && std::all_of(name.begin(), name.end(), [](char c) {
        return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9') ||
               c == '_' || c == '-';
    });
}

bool isTime(std::chrono::nanoseconds time) {
    return time.count() >= 0 && time <= std::chrono::hours(24 * 1000);
}

/// Fails unless the names of the entries are names, each once.
template <class Entries>
std::set<std::string> takeNames(const Entries& entries) {
    std::set<std::string> names;
    for (const auto& entry : entries) {
        require(isName(entry.name.text), "a name that is none");
        require(names.insert(entry.name.text).second, "a name stands twice");
    }
    return names;
}

}  // namespace

std::string describeModel(const FlowModel& model, bool hasPlaces) {
    return Describer(hasPlaces).describe(model);
}

std::optional<std::string> writeFlow(const FlowModel& model) {
    if (!canBeWritten(model)) return std::nullopt;
    return "version: 1\n" +
           sectionText("plugins", model.plugins,
                       [](const PluginEntry& plugin) { return quote(plugin.path.text); }) +
           sectionText("layouts", model.layouts,
                       [](const LayoutEntry& layout) {
                           return "{name: " + quote(layout.name.text) +
                                  ", period: " + timeText(layout.period) + "}";
                       }) +
           sectionText("filters", model.filters, filterText) +
           sectionText("connections", model.connections, connectionText) +
           sectionText("script", model.script, actionText) +
           sectionText("stop", model.stop, stopText);
}

void checkModel(const FlowModel& model) {
    const std::set<std::string> layouts = takeNames(model.layouts);
    const std::set<std::string> filters = takeNames(model.filters);
    require(!layouts.empty() && !filters.empty(), "a flow without layouts or filters");
    for (const LayoutEntry& layout : model.layouts)
        require(isTime(layout.period), "a period that is no time");
    for (const FilterEntry& filter : model.filters) {
        require(layouts.contains(model.getLayoutOf(filter)), "a layout that is not there");
        std::set<std::string> properties;
        for (const PropertyEntry& property : filter.properties)
            require(properties.insert(property.name.text).second, "a property is set twice");
    }
    std::set<std::string> inputs;
    for (const ConnectionEntry& connection : model.connections) {
        require(filters.contains(connection.from.filter) && filters.contains(connection.to.filter),
                "a connection of a filter that is not there");
        require(!connection.from.member.empty(), "a connection of no pin");
        require(inputs.insert(nameText(connection.to)).second, "an input is connected twice");
        const unsigned buffer = connection.bufferSize.value_or(1);
        require(buffer >= 1 && buffer <= 1000000, "a buffer of that size");
    }
    std::chrono::nanoseconds last{0};
    for (const ScriptEntry& action : model.script) {
        require(filters.contains(action.target.filter), "an action on a filter that is not there");
        require(isTime(action.at) && action.at >= last, "actions are not in the order of time");
        last = action.at;
    }
    for (const StopEntry& stop : model.stop) {
        const int kinds =
            (stop.after ? 1 : 0) + (stop.isWhenFinished ? 1 : 0) + (stop.when.empty() ? 0 : 1);
        require(kinds == 1, "a stop condition is not one thing");
        require(!stop.after || isTime(*stop.after), "a stop at no time");
        for (const ValueCondition& condition : stop.when)
            require(filters.contains(condition.property.filter), "a condition on no filter");
    }
}

void checkPlaces(const Problems& problems, const std::string& source, const std::string& text) {
    std::vector<std::size_t> lengths(1);
    for (const char c : text) {
        if (c == '\n')
            lengths.push_back(0);
        else
            ++lengths.back();
    }
    for (const Problem& problem : problems.getList()) {
        const Place& place = problem.place;
        require(place.source == source && !problem.text.empty(), "a problem of another file");
        require(place.line >= 1 && static_cast<std::size_t>(place.line) <= lengths.size(),
                "a line outside of the file");
        const std::size_t length = lengths[static_cast<std::size_t>(place.line) - 1];
        require(place.column >= 1 && static_cast<std::size_t>(place.column) <= length + 1,
                "a column outside of the line");
    }
}

}  // namespace Fuzz
