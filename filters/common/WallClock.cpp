#include "filters/common/WallClock.hpp"

#include "sensorfile/Clock.hpp"

#include <Poco/Timestamp.h>

namespace Filters {

namespace {

Poco::Timestamp presentTime() {
    return SensorFile::Clock::current().now().timestamp();
}

}  // namespace

double unixTime() {
    return static_cast<double>(presentTime().epochMicroseconds()) / 1e6;
}

double gregorianTime() {
    // Poco counts its UTC time in 100 ns from the calendar's start.
    return static_cast<double>(presentTime().utcTime()) * 1e-7;
}

}  // namespace Filters
