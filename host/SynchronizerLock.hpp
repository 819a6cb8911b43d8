#pragma once

#include "framework/Synchronizer.hpp"
#include "host/WakeSignal.hpp"

#include <condition_variable>
#include <cstdint>
#include <memory>
#include <mutex>
#include <vector>

#include <Poco/Event.h>

namespace Quoril::Core {

/// The lock behind one synchronizer or several: threads get it in the order of their coming.
///
/// It is not recursive itself: lockers know what their thread holds.
class QUORIL_CORE_API Synchronizer::Lock {
 public:
    /// @param signal  set whenever an edit ended; null for a lock that no layout runs under
    explicit Lock(std::shared_ptr<WakeSignal> signal = nullptr);

    void lock();
    void unlock();

    /// Number of threads that wait for the lock.
    [[nodiscard]] std::uint64_t getQueueLength();

    /// Tells the layout that an edit ended.
    void noteEdit();

    /// Enters an event that a thread is about to wait for; false when waits have been ended.
    bool beginWait(Poco::Event& event);
    void endWait(Poco::Event& event);

    /// Ends the waits of now, but not those to come.
    void endPresentWaits();
    /// Ends all waits, and those to come.
    void endWaits();
    void allowWaits();

 private:
    void wakeWaiters();

    const std::shared_ptr<WakeSignal> signal_;

    std::mutex mutex_;
    std::condition_variable turn_;
    std::uint64_t nextTicket_ = 0;
    std::uint64_t servedTicket_ = 0;

    std::mutex waitsMutex_;
    bool areWaitsEnded_ = false;
    std::vector<Poco::Event*> waitedEvents_;
};

}  // namespace Quoril::Core
