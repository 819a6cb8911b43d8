#pragma once

#include <string>

namespace Quoril::Core {

/// What a plug-in tells of itself.
struct PluginMetaData {
    std::string version;
    std::string hostVersion;  ///< of the framework it was built against
    std::string name;
    std::string description;
    std::string platform;
    std::string buildDate;
};

}  // namespace Quoril::Core
