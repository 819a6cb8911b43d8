#pragma once

#include <chrono>

#include <Poco/DateTime.h>

namespace Conditions {

/// The system's wall clock, as everything in this process sees it that asks for it: the module, the
/// libraries. The steady clock goes on as it does.
namespace WallClock {

/// Puts the clock to a date, UTC; it goes on from there.
void setTo(const Poco::DateTime& date);
/// Moves it forward, or back by a negative step.
void step(std::chrono::seconds by);
/// Back to the system's.
void restore();

}  // namespace WallClock
}  // namespace Conditions
