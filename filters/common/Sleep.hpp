#pragma once

#include <cstdint>
#include <functional>

namespace Filters {

using SleepFunction = std::function<void(std::int32_t milliseconds)>;

/// Sleeps on the calling thread; 0 or less returns at once. On a Poco::Thread the sleep ends early
/// when somebody wakes the thread up, as a host does to stop a flow.
void sleepMilliseconds(std::int32_t milliseconds);

/// Puts another function in the place of the system's sleep and returns the one before. Only while
/// no filter is at work: tests record sleeps by it.
SleepFunction replaceSleep(SleepFunction sleep);

}  // namespace Filters
