#pragma once

#include "sensorfile/Clock.hpp"

/// What the library asks of the operating system beyond POCO.
namespace SensorFile::Platform {

/// The system's time. The steady one is the cheapest there is, in steps of 1 to 16 ms: it is asked
/// for once a row.
const Clock& systemClock();

}  // namespace SensorFile::Platform
