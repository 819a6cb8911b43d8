#include "tests/conditions/WallClock.hpp"

#include <atomic>
#include <cstdint>
#include <ctime>
#include <dlfcn.h>

#include <Poco/Timestamp.h>

namespace {

std::atomic<std::int64_t> offset{0};  ///< seconds

}  // namespace

namespace Conditions::WallClock {

void setTo(const Poco::DateTime& date) {
    offset = 0;
    offset = date.timestamp().epochTime() - Poco::Timestamp().epochTime();
}

void step(std::chrono::seconds by) {
    offset += by.count();
}

void restore() {
    offset = 0;
}

}  // namespace Conditions::WallClock

/// Libraries find the program's function before the system's.
extern "C" __attribute__((visibility("default"))) int clock_gettime(clockid_t clock,
                                                                    timespec* time) noexcept {
    using Function = int (*)(clockid_t, timespec*);
    static const auto kSystem = reinterpret_cast<Function>(dlsym(RTLD_NEXT, "clock_gettime"));
    const int result = kSystem(clock, time);
    if (clock == CLOCK_REALTIME) time->tv_sec += static_cast<std::time_t>(offset.load());
    return result;
}
