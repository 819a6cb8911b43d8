#pragma once

#include <iosfwd>
#include <string>
#include <vector>

namespace Quoril::Runner {

class Console;

struct InspectOptions {
    std::string className;  ///< empty: list plug-ins and classes
    std::vector<std::string> plugins;
    std::vector<std::string> settings;  ///< PROPERTY=VALUE, e.g. to see the pins that it makes
    bool isJson = false;
};

/// Lists the plug-ins with their filter classes, or the pins and properties of one class as a new
/// filter has them.
/// @return the exit code of the program
[[nodiscard]] int inspect(const InspectOptions& options, std::ostream& output, Console& console);

}  // namespace Quoril::Runner
