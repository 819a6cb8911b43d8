#pragma once

#include "tools/program/OptionTree.hpp"

#include <string>

namespace SensorFileTool {

/// A manual page of section 1, in the language of man(7).
/// @param verb  a verb of the program, or the program itself
[[nodiscard]] std::string manPage(const VerbEntry& verb, const VerbEntry& program);

}  // namespace SensorFileTool
