#include "host/SourcePacer.hpp"

#include <algorithm>
#include <cmath>

namespace Quoril::Core {

namespace {

/// What a duration of nanoseconds can hold, with room for adding it to any time of a steady clock.
constexpr double kLongestWait = 4.0e9;

std::chrono::nanoseconds toNanoseconds(double seconds) {
    // Not a number counts as no time at all.
    if (!(seconds > 0.0)) return std::chrono::nanoseconds(0);
    return std::chrono::nanoseconds(std::llround(std::min(seconds, kLongestWait) * 1e9));
}

}  // namespace

SourcePacer::Instant SourcePacer::getOwnDue(double seconds, Instant now) {
    const std::chrono::nanoseconds time = toNanoseconds(seconds);
    if (!ownStart_ || seconds < lastOwnTime_) ownStart_ = now - time;
    lastOwnTime_ = seconds;
    return *ownStart_ + time;
}

void SourcePacer::notePush(double stamp, double factor, Instant now) {
    const bool wasIdle = wasIdle_;
    wasIdle_ = false;
    if (!std::isfinite(stamp)) return;
    if (!stampDue_) {
        rebase(stamp, now);
        return;
    }
    const double step = stamp - lastStamp_;
    const bool isLate = wasIdle && now - *stampDue_ > kIdleSlack;
    if (step < 0.0 || step > kLongestStep || isLate) {
        rebase(stamp, wasIdle ? std::max(now, *stampDue_) : *stampDue_);
        return;
    }
    lastStamp_ = stamp;
    stampDue_ = start_ + toNanoseconds((stamp - firstStamp_) / factor);
}

void SourcePacer::rebase(double stamp, Instant start) {
    start_ = start;
    firstStamp_ = stamp;
    lastStamp_ = stamp;
    stampDue_ = start;
}

}  // namespace Quoril::Core
