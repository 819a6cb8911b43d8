#include "filters/kivra2/FramePacing.hpp"

#include "filters/common/Numbers.hpp"

using Filters::clampMilliseconds;

namespace {
constexpr double kMillisecondsPerSecond = 1000.0;
}

FramePacing::Step FramePacing::next(const Settings& settings, std::int32_t counter) {
    Step step;
    if (counter < lastCounter_) {
        step.isSent = false;
        return step;
    }
    // Written so that a NaN is replaced too.
    if (!(frequency_ > 0.0)) frequency_ = kFallbackFrequency;
    const double frames =
        lastCounter_ == kNoCounter ? 1.0 : static_cast<double>(counter - lastCounter_);
    switch (settings.mode) {
        case Mode::kFileFrequency:
            step.sleepTime = clampMilliseconds(kMillisecondsPerSecond / frequency_ * frames);
            time_ += frames / frequency_;
            break;
        case Mode::kTicks:
            step.sleepTime = clampMilliseconds(settings.delay * frames);
            time_ += settings.delay >= 1 ? settings.delay * frames / kMillisecondsPerSecond
                                         : frames / frequency_;
            break;
        case Mode::kUnpaced:
            break;
    }
    lastCounter_ = counter == kLastCounter ? kNoCounter : counter;
    return step;
}
