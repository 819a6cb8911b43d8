#pragma once

#include "host/runner/PropertyText.hpp"

#include <string>
#include <vector>

namespace Quoril::Core {
class Filter;
}

namespace Quoril::Runner {

/// What a user can see of a filter.
struct FilterReport {
    struct Input {
        std::string name;
        unsigned bufferSize = 1;
        bool isLifo = false;
    };
    std::string className;
    std::string plugin;
    std::vector<Input> inputs;
    std::vector<std::string> outputs;
    std::vector<PropertyDescription> properties;  ///< in the order of registration
};

[[nodiscard]] FilterReport makeFilterReport(const Core::Filter& filter);
[[nodiscard]] std::string toText(const FilterReport& report);
[[nodiscard]] std::string toJsonText(const FilterReport& report);

}  // namespace Quoril::Runner
