#pragma once

#include "host/Clock.hpp"

#include <mutex>
#include <vector>

namespace Quoril::Core {

/// A clock that stands still until somebody waits: then it jumps to the deadline at once. Waits
/// without a deadline are real ones.
class FakeClock final : public Clock {
 public:
    Instant now() override {
        const std::lock_guard lock(mutex_);
        return now_;
    }

    void wait(WakeSignal& signal, const std::optional<Instant>& deadline,
              WakeSignal::Meanwhile meanwhile) override {
        if (!deadline) {
            signal.wait(deadline, meanwhile);
            return;
        }
        {
            const std::lock_guard lock(mutex_);
            if (*deadline > now_) {
                waits_.push_back(*deadline - now_);
                now_ = *deadline;
            }
        }
        signal.wait(Instant::min(), meanwhile);
    }

    void advance(std::chrono::nanoseconds time) {
        const std::lock_guard lock(mutex_);
        now_ += time;
    }

    [[nodiscard]] std::vector<std::chrono::nanoseconds> getWaits() const {
        const std::lock_guard lock(mutex_);
        return waits_;
    }

 private:
    mutable std::mutex mutex_;
    Instant now_{std::chrono::hours(1)};
    std::vector<std::chrono::nanoseconds> waits_;
};

}  // namespace Quoril::Core
