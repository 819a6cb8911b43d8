#pragma once

#include <chrono>

#include <Poco/DateTime.h>

namespace SensorFile {

/// The time as the library sees it: dates of new files, and the age of rows that wait in memory.
/// Tests replace it, so that nothing has to wait.
class Clock {
 public:
    Clock() = default;
    Clock(const Clock&) = delete;
    Clock& operator=(const Clock&) = delete;
    virtual ~Clock() = default;

    /// The present date and time, UTC.
    [[nodiscard]] virtual Poco::DateTime now() const = 0;
    /// A time that never goes back, from an arbitrary start, to some 10 ms.
    [[nodiscard]] virtual std::chrono::nanoseconds steady() const = 0;

    /// The clock in use; writers take it when they open. May be called from any thread.
    static const Clock& current();
    /// Puts another clock in use, the system's when other is nullptr; returns the one before.
    /// `*other` must live while it is in use.
    static const Clock* replace(const Clock* other);
};

}  // namespace SensorFile
