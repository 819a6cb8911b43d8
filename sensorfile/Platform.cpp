#include "sensorfile/Platform.hpp"

#if defined(_WIN32)
#define WIN32_LEAN_AND_MEAN
#include <windows.h>
#elif defined(__linux__)
#include <ctime>
#endif

namespace SensorFile::Platform {
namespace {

class SystemClock : public Clock {
 public:
    [[nodiscard]] Poco::DateTime now() const override { return {}; }

    [[nodiscard]] std::chrono::nanoseconds steady() const override {
#if defined(_WIN32)
        return std::chrono::milliseconds(GetTickCount64());
#elif defined(__linux__)
        // The precise clock costs as much as packing a whole row.
        timespec time{};
        clock_gettime(CLOCK_MONOTONIC_COARSE, &time);
        return std::chrono::seconds(time.tv_sec) + std::chrono::nanoseconds(time.tv_nsec);
#else
        return std::chrono::steady_clock::now().time_since_epoch();
#endif
    }
};

}  // namespace

const Clock& systemClock() {
    static const SystemClock kClock;
    return kClock;
}

}  // namespace SensorFile::Platform
