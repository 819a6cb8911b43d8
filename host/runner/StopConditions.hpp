#pragma once

#include "host/runner/FlowModel.hpp"

#include <chrono>
#include <functional>
#include <memory>
#include <optional>
#include <vector>

namespace Quoril::Core {
class Flow;
}

namespace Quoril::Runner {

/// Decides when a run ends: by time, by values of properties, or because all sources are finished.
///
/// A condition on values is met when all its properties have their values at once, after at least
/// one of them had another: a replay that is not yet switched on is not one that has ended. Values
/// are followed from construction on, by observing the properties, so that no short-lived value is
/// missed. Without any condition a run ends when all sources are finished.
class StopConditions {
 public:
    /// @param onChange  called, from any thread, when a condition on values is met
    StopConditions(const std::vector<StopEntry>& entries,
                   std::optional<std::chrono::nanoseconds> limit, Core::Flow& flow,
                   const std::function<void()>& onChange);
    /// Stops observing; the flow must still be there.
    ~StopConditions();
    StopConditions(const StopConditions&) = delete;
    StopConditions& operator=(const StopConditions&) = delete;

    /// The earliest time at which the run ends, since the start of the flow.
    [[nodiscard]] std::optional<std::chrono::nanoseconds> getEndTime() const noexcept {
        return endTime_;
    }
    /// Whether a run ends when all sources are finished.
    [[nodiscard]] bool getEndsWhenFinished() const noexcept { return endsWhenFinished_; }

    /// True once a time is over or a condition on values is met.
    [[nodiscard]] bool isMet(std::chrono::nanoseconds sinceStart) const;

 private:
    class ValuesCondition;

    void shorten(std::chrono::nanoseconds time);

    std::optional<std::chrono::nanoseconds> endTime_;
    bool endsWhenFinished_ = false;
    std::vector<std::unique_ptr<ValuesCondition>> conditions_;
};

}  // namespace Quoril::Runner
