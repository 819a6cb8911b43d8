#pragma once

#include "host/runner/FlowModel.hpp"
#include "host/runner/Problems.hpp"

namespace Quoril::Runner {

/// Tests what can be told of a flow without its plug-ins: names of layouts, filters and their
/// inputs are unique, and known where they are used.
void checkNames(const FlowModel& model, Problems& problems);

}  // namespace Quoril::Runner
