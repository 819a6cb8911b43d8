#include "host/Activity.hpp"

namespace Quoril::Core {

void Activity::enter() {
    const std::lock_guard lock(mutex_);
    ++busyCount_;
}

void Activity::leave() {
    const std::lock_guard lock(mutex_);
    if (--busyCount_ == 0) rested_.notify_all();
}

bool Activity::isAtRest() const {
    const std::lock_guard lock(mutex_);
    return busyCount_ == 0;
}

bool Activity::waitForRest(std::chrono::nanoseconds longest) const {
    std::unique_lock lock(mutex_);
    return rested_.wait_for(lock, longest, [this] { return busyCount_ == 0; });
}

}  // namespace Quoril::Core
