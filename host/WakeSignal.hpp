#pragma once

#include "framework/Export.hpp"

#include <atomic>
#include <chrono>
#include <condition_variable>
#include <cstdint>
#include <memory>
#include <mutex>
#include <optional>

namespace Quoril::Core {

class Activity;

/// Wakes a layout's thread. A signal that comes before the wait ends the wait at once.
///
/// set() and setByEdit() are safe from any thread; the rest belongs to the layout's thread.
class QUORIL_CORE_API WakeSignal {
 public:
    using Instant = std::chrono::steady_clock::time_point;
    enum class Meanwhile { kResting, kBusy };

    /// @param activity  where the layout counts as busy while its thread has something to do; null
    ///                  for a signal that nobody's rest depends on
    explicit WakeSignal(std::shared_ptr<Activity> activity = nullptr);

    /// There may be work.
    void set();
    /// An edit ended; it may have made work that no counter shows.
    void setByEdit();
    /// Number of edits so far.
    [[nodiscard]] std::uint64_t getEditCount() const noexcept { return editCount_; }

    /// Asks the layouts of the readers for a signal when they have taken something. The thread
    /// looks for room once more after asking.
    void askForRoom() noexcept { wantsRoom_ = true; }
    /// Something was taken. Safe from any thread.
    void tellRoom() {
        if (wantsRoom_.exchange(false)) set();
    }

    /// The thread begins: from now on it counts as busy unless it waits.
    void begin();
    /// The thread ends.
    void end();
    /// Waits for a signal, or until the deadline. A resting thread has nothing to do until then; a
    /// busy one only holds back.
    void wait(const std::optional<Instant>& deadline, Meanwhile meanwhile);

 private:
    void setLocked();
    void stopResting();

    const std::shared_ptr<Activity> activity_;
    std::mutex mutex_;
    std::condition_variable signalled_;
    bool isPending_ = false;
    bool isWaiting_ = false;
    bool isResting_ = false;
    std::atomic<std::uint64_t> editCount_{0};
    std::atomic<bool> wantsRoom_{false};
};

}  // namespace Quoril::Core
