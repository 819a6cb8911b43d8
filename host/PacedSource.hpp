#pragma once

#include <optional>

namespace Quoril::Core {

/// Implemented, beside Filter, by sources that know when their next row is due. The host then
/// calls process() at that time instead of polling, so that the source never sleeps. All
/// operations are called under the filter's synchronizer.
class PacedSource {
 public:
    virtual ~PacedSource() = default;

    /// When the next row is due at the source's own pace, or nothing for "as fast as the graph
    /// takes it" and while paused. Seconds from a start of the source's choosing: only the steps
    /// between rows count, and after a time without pace the next row is due at once.
    [[nodiscard]] virtual std::optional<double> getNextDueTime() const = 0;

    /// True when there is nothing more to send; the host then calls only after an edit.
    [[nodiscard]] virtual bool isFinished() const = 0;
};

}  // namespace Quoril::Core
