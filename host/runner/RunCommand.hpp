#pragma once

#include "host/Pacing.hpp"
#include "host/runner/FlowPreparation.hpp"

#include <chrono>
#include <optional>

namespace Quoril::Runner {

class Console;

struct RunOptions {
    FlowOptions flow;
    std::optional<std::chrono::nanoseconds> limit;  ///< since the start of the flow
    Core::Pacing pacing;
    bool showsProgress = false;
};

/// Runs a flow until a stop condition is met, its sources are finished, or the user interrupts.
/// Recordings are closed in any case.
/// @return the exit code of the program
[[nodiscard]] int runFlow(const RunOptions& options, Console& console);

}  // namespace Quoril::Runner
