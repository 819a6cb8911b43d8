#pragma once

#include "framework/Synchronizer.hpp"
#include "host/EditGate.hpp"
#include "host/SynchronizerLock.hpp"

#include <atomic>
#include <thread>

namespace FrameworkTest {

/// Whether the operation, on another thread, waits while this one holds the synchronizer.
template <class Operation>
bool waitsFor(Quoril::Core::Synchronizer& synchronizer, Operation operation) {
    std::atomic<bool> isDone{false};
    std::thread other;
    bool isWaiting = false;
    {
        const Quoril::Core::Synchronizer::DisablerLocker lock(&synchronizer, nullptr);
        other = std::thread([&] {
            // As a layout's thread: an editor would queue up before the lock, where it is not seen.
            Quoril::Core::EditGate::setIsLayoutThread(true);
            operation();
            isDone = true;
        });
        while (!isDone && !isWaiting) {
            std::this_thread::yield();
            isWaiting = synchronizer.getLock()->getQueueLength() > 0;
        }
    }
    other.join();
    return isWaiting;
}

}  // namespace FrameworkTest
