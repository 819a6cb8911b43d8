#include "host/SynchronizerLock.hpp"

#include <algorithm>
#include <utility>

namespace Quoril::Core {

Synchronizer::Lock::Lock(std::shared_ptr<WakeSignal> signal) : signal_(std::move(signal)) {}

void Synchronizer::Lock::lock() {
    std::unique_lock lock(mutex_);
    const std::uint64_t ticket = nextTicket_++;
    turn_.wait(lock, [&] { return servedTicket_ == ticket; });
}

void Synchronizer::Lock::unlock() {
    const std::lock_guard lock(mutex_);
    if (++servedTicket_ != nextTicket_) turn_.notify_all();
}

std::uint64_t Synchronizer::Lock::getQueueLength() {
    const std::lock_guard lock(mutex_);
    const std::uint64_t present = nextTicket_ - servedTicket_;
    return present == 0 ? 0 : present - 1;
}

void Synchronizer::Lock::noteEdit() {
    if (signal_) signal_->setByEdit();
}

bool Synchronizer::Lock::beginWait(Poco::Event& event) {
    const std::lock_guard lock(waitsMutex_);
    if (areWaitsEnded_) return false;
    waitedEvents_.push_back(&event);
    return true;
}

void Synchronizer::Lock::endWait(Poco::Event& event) {
    const std::lock_guard lock(waitsMutex_);
    waitedEvents_.erase(std::find(waitedEvents_.begin(), waitedEvents_.end(), &event));
}

void Synchronizer::Lock::endPresentWaits() {
    const std::lock_guard lock(waitsMutex_);
    wakeWaiters();
}

void Synchronizer::Lock::endWaits() {
    const std::lock_guard lock(waitsMutex_);
    areWaitsEnded_ = true;
    wakeWaiters();
}

void Synchronizer::Lock::wakeWaiters() {
    for (Poco::Event* event : waitedEvents_)
        event->set();
}

void Synchronizer::Lock::allowWaits() {
    const std::lock_guard lock(waitsMutex_);
    areWaitsEnded_ = false;
}

}  // namespace Quoril::Core
