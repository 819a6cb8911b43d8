#pragma once

#include <atomic>
#include <thread>

#include <Poco/Mutex.h>

namespace Filters {

/// A mutex that refuses to be locked twice by one thread, on every platform alike.
class FilterMutex {
 public:
    /// @throws Poco::IllegalStateException if the calling thread holds the mutex already
    void lock();
    void unlock();

 private:
    Poco::FastMutex mutex_;
    std::atomic<std::thread::id> owner_{};
};

/// Excludes a filter's processing call and its reconfigurations from each other.
///
/// A processing call holds the mutex for its whole run. A reconfiguration holds it only to raise
/// and to lower the busy count: it waits for the call that runs, and later calls do nothing until
/// it has ended. Reconfigurations may nest.
///
/// Order of locks: synchronizers first, then this mutex, then a buffer's mutex. A processing call
/// therefore touches no property while it holds the mutex: it reads them before, and sets them
/// after.
class FilterGuard {
 public:
    /// Marks the filter as being reconfigured, for its scope; also when an exception ends it.
    class Busy {
     public:
        explicit Busy(FilterGuard& guard);
        /// Within a processing call it ends the process, where the constructor would throw.
        ~Busy();  // NOLINT(bugprone-exception-escape): see above
        Busy(const Busy&) = delete;
        Busy& operator=(const Busy&) = delete;

     private:
        FilterGuard& guard_;
    };

    /// Holds the mutex for the scope of a processing call.
    class Call {
     public:
        explicit Call(FilterGuard& guard);
        ~Call();
        Call(const Call&) = delete;
        Call& operator=(const Call&) = delete;

        /// True while the filter is being reconfigured: the call must do nothing.
        [[nodiscard]] bool isBusy() const { return guard_.busyCount_ > 0; }

     private:
        FilterGuard& guard_;
    };

 private:
    void changeBusyCount(int difference);

    FilterMutex mutex_;
    int busyCount_ = 0;
};

}  // namespace Filters
