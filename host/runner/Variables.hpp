#pragma once

#include <functional>
#include <optional>
#include <string>

namespace Quoril::Runner {

/// Gives the value of a variable, or nothing if it is not defined.
using VariableLookup = std::function<std::optional<std::string>(const std::string& name)>;

/// Looks into the environment of the process.
[[nodiscard]] std::optional<std::string> lookUpEnvironment(const std::string& name);

/// Replaces ${NAME} by the variable's value, ${NAME:-default} by the default if the variable is
/// undefined or empty, and $$ by a dollar. Any other dollar stays. What was put in is not
/// expanded again.
/// @throws Poco::DataFormatException if a variable without default is undefined, a name is not one
///         (letters, digits, '_', not beginning with a digit), the closing brace is missing, or the
///         text becomes longer than 8 MiB
[[nodiscard]] std::string expandVariables(const std::string& text, const VariableLookup& lookUp);

}  // namespace Quoril::Runner
