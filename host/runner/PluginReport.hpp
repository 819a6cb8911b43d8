#pragma once

#include "framework/PluginMetaData.hpp"

#include <string>
#include <vector>

namespace Quoril::Core {
class PluginManager;
}

namespace Quoril::Runner {

/// What a user can see of an installed plug-in.
struct PluginReport {
    std::string name;
    Core::PluginMetaData metaData;
    std::vector<std::string> filterClasses;  ///< in the order of registration
};

[[nodiscard]] std::vector<PluginReport> makePluginReports(const Core::PluginManager& plugins);
[[nodiscard]] std::string toText(const std::vector<PluginReport>& reports);
[[nodiscard]] std::string toJsonText(const std::vector<PluginReport>& reports);

}  // namespace Quoril::Runner
