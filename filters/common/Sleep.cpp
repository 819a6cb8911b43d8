#include "filters/common/Sleep.hpp"

#include <utility>

#include <Poco/Thread.h>

namespace Filters {
namespace {

void sleepOnThread(std::int32_t milliseconds) {
    if (Poco::Thread::current() != nullptr)
        Poco::Thread::trySleep(milliseconds);
    else
        Poco::Thread::sleep(milliseconds);
}

SleepFunction& currentSleep() {
    static SleepFunction function = sleepOnThread;
    return function;
}

}  // namespace

void sleepMilliseconds(std::int32_t milliseconds) {
    if (milliseconds > 0) currentSleep()(milliseconds);
}

SleepFunction replaceSleep(SleepFunction sleep) {
    return std::exchange(currentSleep(), std::move(sleep));
}

}  // namespace Filters
