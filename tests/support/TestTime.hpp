#pragma once

#include "filters/common/Sleep.hpp"
#include "sensorfile/Clock.hpp"

#include <chrono>
#include <cstdint>
#include <utility>
#include <vector>

#include <Poco/DateTime.h>

namespace Support {

/// Puts a clock that stands still in use for its scope.
class FixedClock : public SensorFile::Clock {
 public:
    explicit FixedClock(const Poco::DateTime& now) : now_(now), before_(replace(this)) {}
    ~FixedClock() override { replace(before_); }
    FixedClock(const FixedClock&) = delete;
    FixedClock& operator=(const FixedClock&) = delete;

    [[nodiscard]] Poco::DateTime now() const override { return now_; }
    [[nodiscard]] std::chrono::nanoseconds steady() const override { return {}; }

 private:
    const Poco::DateTime now_;
    const SensorFile::Clock* const before_;
};

/// Records the sleeps of the filters for its scope; nobody waits.
class RecordedSleeps {
 public:
    RecordedSleeps()
        : before_(Filters::replaceSleep(
              [this](std::int32_t milliseconds) { sleeps_.push_back(milliseconds); })) {}
    ~RecordedSleeps() { Filters::replaceSleep(std::move(before_)); }
    RecordedSleeps(const RecordedSleeps&) = delete;
    RecordedSleeps& operator=(const RecordedSleeps&) = delete;

    /// The sleeps since the last call, milliseconds.
    std::vector<std::int32_t> take() { return std::exchange(sleeps_, {}); }

 private:
    std::vector<std::int32_t> sleeps_;
    Filters::SleepFunction before_;
};

}  // namespace Support
