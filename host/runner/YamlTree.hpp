#pragma once

#include "host/runner/Problems.hpp"
#include "host/runner/Variables.hpp"

#include <cstddef>
#include <optional>
#include <string>
#include <vector>

namespace Quoril::Runner {

struct YamlEntry;

/// A value of a YAML document with its place; scalars are kept as the texts they are written as.
struct YamlNode {
    enum class Kind { kNull, kScalar, kList, kMap };
    Kind kind = Kind::kNull;
    Place place;
    std::string text;                ///< of a scalar, variables replaced
    bool isBroken = false;           ///< a scalar whose variables could not be replaced
    std::vector<YamlNode> items;     ///< of a list
    std::vector<YamlEntry> entries;  ///< of a map, in their order

    [[nodiscard]] bool isScalar() const noexcept { return kind == Kind::kScalar; }
    [[nodiscard]] bool isList() const noexcept { return kind == Kind::kList; }
    [[nodiscard]] bool isMap() const noexcept { return kind == Kind::kMap; }
};

struct YamlEntry {
    YamlNode key;  ///< always a scalar
    YamlNode value;
};

/// How much a file may hold, so that no file can exhaust the memory: repeated aliases grow a few
/// lines to gigabytes.
struct YamlLimits {
    std::size_t depth = 20;
    std::size_t nodes = 20000;
    std::size_t bytes = std::size_t{8} << 20U;  ///< of all scalars together
};

/// Reads a text that holds one YAML document.
/// @param source  name of the text in the places
/// @return nothing if the text is not a YAML document, which is then told as a problem; double
///         keys, keys that are no scalars and wrong variables are told too, but do not end it
[[nodiscard]] std::optional<YamlNode> parseYaml(const std::string& text, const std::string& source,
                                                const VariableLookup& lookUp, Problems& problems,
                                                const YamlLimits& limits = {});

}  // namespace Quoril::Runner
