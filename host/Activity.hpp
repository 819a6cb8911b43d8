#pragma once

#include "framework/Export.hpp"

#include <chrono>
#include <condition_variable>
#include <mutex>

namespace Quoril::Core {

/// Counts the layouts of a flow that have something to do. A layout that gives work to another
/// one makes it count before it rests itself, so that zero means: nothing moves in the flow.
class QUORIL_CORE_API Activity {
 public:
    void enter();
    void leave();
    [[nodiscard]] bool isAtRest() const;
    /// Waits until nothing moves; false after the time.
    bool waitForRest(std::chrono::nanoseconds longest) const;

 private:
    mutable std::mutex mutex_;
    mutable std::condition_variable rested_;
    int busyCount_ = 0;
};

}  // namespace Quoril::Core
