#include "host/WakeSignal.hpp"

#include "host/Activity.hpp"

#include <utility>

namespace Quoril::Core {

WakeSignal::WakeSignal(std::shared_ptr<Activity> activity) : activity_(std::move(activity)) {}

void WakeSignal::set() {
    const std::lock_guard lock(mutex_);
    setLocked();
}

void WakeSignal::setByEdit() {
    const std::lock_guard lock(mutex_);
    ++editCount_;
    setLocked();
}

void WakeSignal::setLocked() {
    isPending_ = true;
    // On behalf of the waiting thread: whoever signals may rest before that thread is awake.
    stopResting();
    if (isWaiting_) signalled_.notify_one();
}

void WakeSignal::stopResting() {
    if (!isResting_) return;
    isResting_ = false;
    if (activity_) activity_->enter();
}

void WakeSignal::begin() {
    const std::lock_guard lock(mutex_);
    if (activity_) activity_->enter();
}

void WakeSignal::end() {
    const std::lock_guard lock(mutex_);
    if (activity_) activity_->leave();
}

void WakeSignal::wait(const std::optional<Instant>& deadline, Meanwhile meanwhile) {
    std::unique_lock lock(mutex_);
    if (!isPending_) {
        isWaiting_ = true;
        isResting_ = meanwhile == Meanwhile::kResting;
        if (isResting_ && activity_) activity_->leave();
        const auto isSignalled = [this] { return isPending_; };
        if (deadline)
            signalled_.wait_until(lock, *deadline, isSignalled);
        else
            signalled_.wait(lock, isSignalled);
        stopResting();
        isWaiting_ = false;
    }
    isPending_ = false;
}

}  // namespace Quoril::Core
