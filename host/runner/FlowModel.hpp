#pragma once

#include "host/runner/Problems.hpp"

#include <chrono>
#include <optional>
#include <string>
#include <vector>

namespace Quoril::Runner {

/// What a flow file says, in its order, before anything of it is looked up in the plug-ins.

struct PluginEntry {
    Text path;
    std::string baseFolder;  ///< relative paths start here; empty: the current folder
};

struct LayoutEntry {
    Text name;
    std::chrono::nanoseconds period{0};  ///< shortest time between two rounds
};

struct PropertyEntry {
    Text name;
    Text value;
};

struct FilterEntry {
    Text name;
    Text className;
    std::optional<Text> layout;
    std::vector<PropertyEntry> properties;
};

/// A pin or a property of a filter: "rec.Record".
struct MemberName {
    std::string filter;
    std::string member;
    Place place;
};

struct ConnectionEntry {
    MemberName from;
    MemberName to;
    std::optional<unsigned> bufferSize;  ///< samples
    std::optional<bool> isLifo;
};

struct ScriptEntry {
    std::chrono::nanoseconds at{0};  ///< since the start of the flow
    MemberName target;
    std::optional<Text> value;  ///< to be set; nothing: the target is a command
};

struct ValueCondition {
    MemberName property;
    Text value;
};

struct StopEntry {
    std::optional<std::chrono::nanoseconds> after;  ///< since the start of the flow
    std::vector<ValueCondition> when;               ///< all of them at once
    bool isWhenFinished = false;                    ///< all sources are finished
};

struct FlowModel {
    std::string path;
    std::vector<PluginEntry> plugins;
    std::vector<LayoutEntry> layouts;  ///< at least one
    std::vector<FilterEntry> filters;
    std::vector<ConnectionEntry> connections;
    std::vector<ScriptEntry> script;  ///< by time; equal times in the order of the file
    std::vector<StopEntry> stop;      ///< any of them ends the run

    /// The filter of that name, or null.
    [[nodiscard]] const FilterEntry* findFilter(const std::string& name) const;
    [[nodiscard]] FilterEntry* findFilter(const std::string& name);
    [[nodiscard]] std::vector<std::string> getFilterNames() const;

    /// Name of the layout of a filter that names none: "main" if there is one, else the first.
    [[nodiscard]] const std::string& getDefaultLayout() const;
    [[nodiscard]] const std::string& getLayoutOf(const FilterEntry& filter) const;
};

}  // namespace Quoril::Runner
