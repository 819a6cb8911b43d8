#pragma once

#include <chrono>
#include <condition_variable>
#include <mutex>

namespace Quoril::Runner {

/// Lets one thread sleep until a time or until another thread rings.
class WakeUp {
 public:
    void ring() {
        {
            const std::lock_guard lock(mutex_);
            isRung_ = true;
        }
        condition_.notify_one();
    }

    /// Returns at the time, or at once if someone rang since the last return.
    void waitUntil(std::chrono::steady_clock::time_point time) {
        std::unique_lock lock(mutex_);
        condition_.wait_until(lock, time, [this] { return isRung_; });
        isRung_ = false;
    }

 private:
    std::mutex mutex_;
    std::condition_variable condition_;
    bool isRung_ = false;
};

}  // namespace Quoril::Runner
