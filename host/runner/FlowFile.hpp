#pragma once

#include "host/runner/FlowModel.hpp"
#include "host/runner/Problems.hpp"
#include "host/runner/Variables.hpp"

#include <string>

namespace Quoril::Runner {

/// Reads the text of a flow file. Grammar: docs/flow-file.md.
///
/// Everything that can be told without plug-ins is tested: keys, forms, and that names of layouts
/// and filters are unique and known where they are used.
/// @param path  of the file, for the places of problems and for plug-ins named relative to it
/// @return the model, as far as it could be read; not to be used if there are errors
[[nodiscard]] FlowModel parseFlow(const std::string& text, const std::string& path,
                                  const VariableLookup& lookUp, Problems& problems);

/// Reads a flow file; one that cannot be read, or is larger than 1 MiB, is a problem.
[[nodiscard]] FlowModel readFlowFile(const std::string& path, Problems& problems);

}  // namespace Quoril::Runner
