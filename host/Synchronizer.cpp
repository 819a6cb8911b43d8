#include "framework/Synchronizer.hpp"

#include "host/EditGate.hpp"
#include "host/SynchronizerLock.hpp"

#include <atomic>
#include <functional>
#include <mutex>
#include <utility>

namespace Quoril::Core {

struct Synchronizer::Impl {
    std::mutex mutex;
    std::shared_ptr<Lock> lock = std::make_shared<Lock>();
    /// The same lock, to be compared only: it may be gone by the time it is looked at, unless the
    /// looking thread holds it.
    std::atomic<const Lock*> current{lock.get()};
};

namespace {

/// The topmost hold of this thread, seen as opaque by the rest.
thread_local constinit void* topHold = nullptr;

}  // namespace

Synchronizer::Synchronizer() : impl_(std::make_unique<Impl>()) {}
Synchronizer::~Synchronizer() = default;

std::shared_ptr<Synchronizer::Lock> Synchronizer::getLock() const {
    const std::lock_guard guard(impl_->mutex);
    return impl_->lock;
}

void Synchronizer::setLock(std::shared_ptr<Lock> lock) {
    const std::lock_guard guard(impl_->mutex);
    impl_->current.store(lock.get());
    impl_->lock.swap(lock);
}

bool Synchronizer::isHeldByThisThread() const noexcept {
    using Hold = DisablerLocker::Hold;
    // No other thread can move the synchronizer away from a lock that this thread holds, so a
    // match stays one; anything else is found out by the slow way.
    const Lock* current = impl_->current.load(std::memory_order_acquire);
    for (const Hold* hold = static_cast<const Hold*>(topHold); hold != nullptr; hold = hold->below)
        if (hold->lock.get() == current) return true;
    return false;
}

void Synchronizer::signal(Poco::Event& event) {
    event.set();
}

void Synchronizer::wait(Poco::FastMutex& mutex, Poco::Event& event) {
    // While the mutex is held: no signal that belongs to this wait can come before.
    event.reset();
    const std::shared_ptr<Lock> lock = getLock();
    if (!lock->beginWait(event)) return;
    mutex.unlock();
    const bool isHeld = isHeldByThisThread();
    // The gate may be passed on only if nothing else is held: it comes before every lock.
    const bool isOnlyHold =
        isHeld && static_cast<const DisablerLocker::Hold*>(topHold)->below == nullptr;
    const unsigned gateDepth = isOnlyHold ? EditGate::leaveWholly() : 0;
    if (isHeld) lock->unlock();
    event.wait();
    EditGate::reenter(gateDepth);
    if (isHeld) lock->lock();
    mutex.lock();
    lock->endWait(event);
}

Synchronizer::DisablerLocker::DisablerLocker(Synchronizer* first, Synchronizer* second) {
    if (first != nullptr && first->isHeldByThisThread()) first = nullptr;
    if (second != nullptr && second->isHeldByThisThread()) second = nullptr;
    if (first != nullptr || second != nullptr) acquire(first, second);
}

void Synchronizer::DisablerLocker::acquire(Synchronizer* first, Synchronizer* second) {
    if (topHold == nullptr) {
        EditGate::enter();
        isGateHeld_ = true;
    }
    while (!tryAcquire(first, second)) {
    }
}

/// Locks what the synchronizers refer to; false, and nothing locked, when one of them was moved to
/// another lock meanwhile.
bool Synchronizer::DisablerLocker::tryAcquire(Synchronizer* first, Synchronizer* second) {
    if (first != nullptr) first_.lock = first->getLock();
    if (second != nullptr) second_.lock = second->getLock();
    if (first_.lock == second_.lock) second_.lock.reset();
    // By address, so that the order is the same for all threads.
    if (std::less<>()(second_.lock.get(), first_.lock.get())) first_.lock.swap(second_.lock);
    for (Hold* hold : {&first_, &second_}) {
        if (hold->lock == nullptr) continue;
        hold->lock->lock();
        hold->below = static_cast<Hold*>(topHold);
        topHold = hold;
    }
    if ((first == nullptr || first->isHeldByThisThread()) &&
        (second == nullptr || second->isHeldByThisThread()))
        return true;
    release();
    return false;
}

void Synchronizer::DisablerLocker::release() noexcept {
    for (Hold* hold : {&second_, &first_}) {
        if (hold->lock == nullptr) continue;
        topHold = hold->below;
        hold->lock->unlock();
        if (!EditGate::isLayoutThread()) hold->lock->noteEdit();
        hold->lock.reset();
    }
}

Synchronizer::DisablerLocker::~DisablerLocker() {
    release();
    if (isGateHeld_) EditGate::leave();
}

}  // namespace Quoril::Core
