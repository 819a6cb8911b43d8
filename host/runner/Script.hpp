#pragma once

#include "host/runner/FlowModel.hpp"
#include "host/runner/Problems.hpp"
#include "host/runner/Recordings.hpp"

#include <chrono>
#include <functional>
#include <optional>
#include <string>
#include <vector>

namespace Quoril::Core {
class Flow;
}

namespace Quoril::Runner {

/// Runs the timed actions of a flow file.
class Script {
 public:
    /// @param entries  by time
    /// @param onAction  told of each action before it runs, in words
    /// @param onLoss  told of recordings whose end is lost when an action ends them
    Script(const std::vector<ScriptEntry>& entries, const Core::Flow& flow,
           std::function<void(const std::string&)> onAction, OnRecordingLoss onLoss);

    /// When the next action is due, since the start of the flow; nothing after the last one.
    [[nodiscard]] std::optional<std::chrono::nanoseconds> getNextTime() const;

    /// Runs all actions that are due. The first one that is refused is told as a failure and ends
    /// the script.
    void runDue(std::chrono::nanoseconds sinceStart, Problems& problems);

 private:
    /// @return what the filter has against it; empty if it is done
    [[nodiscard]] std::string run(const ScriptEntry& entry) const;

    const std::vector<ScriptEntry>& entries_;
    const Core::Flow& flow_;
    std::function<void(const std::string&)> onAction_;
    OnRecordingLoss onLoss_;
    std::size_t next_ = 0;
};

}  // namespace Quoril::Runner
