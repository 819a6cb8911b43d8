#pragma once

#include "host/runner/FlowModel.hpp"
#include "host/runner/YamlTree.hpp"

#include <functional>
#include <optional>
#include <string>
#include <vector>

namespace Quoril::Runner {

/// Turns the YAML tree of a flow file into the model, section by section. What is wrong is told and
/// left out.
class FlowReader {
 public:
    FlowReader(FlowModel& model, Problems& problems) : model_(model), problems_(problems) {}

    void read(const YamlNode& root);

 private:
    using Reader = void (FlowReader::*)(const YamlNode&);

    void readVersion(const YamlNode& root);
    void readPlugin(const YamlNode& node);
    void readLayout(const YamlNode& node);
    void readFilter(const YamlNode& node);
    void readProperties(const YamlNode& node, FilterEntry& filter);
    void readProperty(const YamlNode& node, FilterEntry& filter);
    void readConnection(const YamlNode& node);
    void readConnectionMap(const YamlNode& node);
    void readAction(const YamlNode& node);
    void readStop(const YamlNode& node);
    void readWhen(const YamlNode& node, StopEntry& stop);

    void readList(const YamlNode& root, const std::string& key, Reader reader);
    /// Tests that the node is a map with known keys only.
    bool checkMap(const YamlNode& node, const std::string& what,
                  const std::vector<std::string>& keys);
    /// The scalar as text; nothing, and told, if it is no scalar.
    std::optional<Text> readText(const YamlNode& node, const std::string& what);
    /// The scalar of that key; a missing key is told.
    std::optional<Text> readRequired(const YamlNode& map, const std::string& key,
                                     const std::string& what);
    /// A name of the user's own: letters, digits, '_' and '-'.
    std::optional<Text> readName(const YamlNode& map, const std::string& what);
    std::optional<std::chrono::nanoseconds> readTime(const YamlNode& node, const std::string& what);
    /// Runs the parser, and tells of its exception at the place.
    bool attempt(const Place& place, const std::function<void()>& parser);

    FlowModel& model_;
    Problems& problems_;
};

}  // namespace Quoril::Runner
