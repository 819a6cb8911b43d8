#pragma once

#include "framework/Export.hpp"

#include <memory>

#include <Poco/Event.h>
#include <Poco/Mutex.h>

namespace Quoril::Core {

/// Excludes the host's edits and a filter's processing calls from each other.
///
/// Filters under one layout manager share one lock: whoever holds it has the whole layout at rest.
/// The lock is recursive per thread and fair: waiting threads get it in the order of their coming,
/// so that an edit gets in between two rounds of a busy layout.
///
/// Order of locks: synchronizers first, then a filter's own mutex, then a buffer's mutex.
///
/// Edits are made one at a time in a process: a thread that is no layout's thread passes one gate
/// before it gets its first lock, so that it may need a second one (pins of another layout that
/// are detached, say) without a deadlock. A layout's thread holds its own layout's lock alone; IT
/// MUST NOT edit properties, pins or connections of another layout.
class QUORIL_CORE_API Synchronizer {
 public:
    class Lock;

    /// Holds one synchronizer or two for its scope; null pointers are left out, and two that share
    /// a lock count once. Locks two in an order that is the same for all threads.
    class QUORIL_CORE_API DisablerLocker {
     public:
        DisablerLocker(Synchronizer* first, Synchronizer* second);
        ~DisablerLocker();
        DisablerLocker(const DisablerLocker&) = delete;
        DisablerLocker& operator=(const DisablerLocker&) = delete;

     private:
        friend class Synchronizer;

        // A lock that this thread got by this locker. It is kept alive and named here: the
        // synchronizer may be moved to another lock, or destroyed, by the very code that this
        // locker protects. The holds of a thread form a chain, so that a nested locker finds with
        // a glance that there is nothing to do; hence LOCKERS OF A THREAD END IN REVERSE ORDER.
        struct Hold {
            std::shared_ptr<Lock> lock;
            Hold* below = nullptr;
        };

        void acquire(Synchronizer* first, Synchronizer* second);
        bool tryAcquire(Synchronizer* first, Synchronizer* second);
        void release() noexcept;

        Hold first_;
        Hold second_;
        bool isGateHeld_ = false;
    };

    Synchronizer();
    ~Synchronizer();
    Synchronizer(const Synchronizer&) = delete;
    Synchronizer& operator=(const Synchronizer&) = delete;

    /// Waits for the event, or for the host to end the wait (at the flow's stop).
    ///
    /// Call with the mutex locked; it is released while waiting and locked again on return. What
    /// the calling thread holds of this synchronizer is released too meanwhile, so that an edit
    /// can get through. A signal from before the call does not count.
    void wait(Poco::FastMutex& mutex, Poco::Event& event);

    /// Wakes a waiter of the event.
    void signal(Poco::Event& event);

    /// The lock behind this synchronizer. Host only.
    [[nodiscard]] std::shared_ptr<Lock> getLock() const;

    /// Puts the synchronizer on another lock; the caller holds both, and the filter is at rest.
    /// Host only.
    void setLock(std::shared_ptr<Lock> lock);

    [[nodiscard]] bool isHeldByThisThread() const noexcept;

 private:
    struct Impl;
    std::unique_ptr<Impl> impl_;
};

}  // namespace Quoril::Core
