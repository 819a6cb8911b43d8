#include "filters/sensorfile/ReplayPacing.hpp"

#include "filters/common/Numbers.hpp"

#include <cmath>
#include <optional>

using Filters::clampMilliseconds;

namespace {

constexpr double kMillisecondsPerSecond = 1000.0;

// The nearest millisecond: a difference of replay times is a hair below or above the delay that
// was added, and cutting it would lose a whole millisecond.
std::int32_t toSleepTime(double seconds) {
    return clampMilliseconds(std::round(seconds * kMillisecondsPerSecond));
}

}  // namespace

ReplayPacing::Step ReplayPacing::next(const Settings& settings, double fileTime) {
    if (settings.mode == Mode::kTicks)
        return settings.usesFileTime ? tickByFrame(settings, fileTime) : tickByDelay(settings);
    return settings.usesFileTime ? followFileTime(settings, fileTime) : followDelay(settings);
}

void ReplayPacing::requireFrequency() {
    // Written so that a NaN is replaced too.
    if (!(frequency_ > 0.0)) frequency_ = kFallbackFrequency;
}

ReplayPacing::Step ReplayPacing::tickByDelay(const Settings& settings) {
    requireFrequency();
    Step step;
    if (!settings.isQuick) step.sleepTime = clampMilliseconds(settings.delay);
    time_ += settings.delay < 1 ? 1.0 / frequency_ : settings.delay / kMillisecondsPerSecond;
    return step;
}

ReplayPacing::Step ReplayPacing::tickByFrame(const Settings& settings, double fileTime) {
    requireFrequency();
    Step step;
    const std::optional<std::int64_t> frame = Filters::truncateToInt64(fileTime);
    // Compared instead of subtracted: the difference of two frames need not fit 64 bits.
    if (!frame || *frame < lastFrame_) {
        step.isSent = false;
        return step;
    }
    const double ticks = lastFrame_ == kNoFrame
                             ? 1.0
                             : static_cast<double>(*frame) - static_cast<double>(lastFrame_);
    if (!settings.isQuick)
        step.sleepTime = clampMilliseconds(kMillisecondsPerSecond / frequency_ * ticks);
    time_ += ticks / frequency_;
    lastFrame_ = *frame == kLastFrame ? kNoFrame : *frame;
    return step;
}

ReplayPacing::Step ReplayPacing::followDelay(const Settings& settings) {
    const double before = time_;
    time_ += settings.delay / kMillisecondsPerSecond;
    Step step;
    if (!settings.isQuick) step.sleepTime = toSleepTime(time_ - before);
    return step;
}

ReplayPacing::Step ReplayPacing::followFileTime(const Settings& settings, double fileTime) {
    const double difference = fileTime - time_;
    // Written so that a NaN falls back too: it would stay in the replay time for good.
    if (!(difference > 0.0 && difference < kLongestStep)) {
        Step step = tickByDelay(settings);
        step.endsFileTime = true;
        return step;
    }
    time_ = fileTime;
    Step step;
    if (!settings.isQuick) step.sleepTime = toSleepTime(difference);
    return step;
}
