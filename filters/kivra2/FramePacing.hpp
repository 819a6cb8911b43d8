#pragma once

#include <cstdint>

/// When the rows of a unit's recording are sent: by the steps of its frame counter.
class FramePacing {
 public:
    enum class Mode {
        kFileFrequency,  ///< a frame takes one period of the file's frequency
        kTicks,          ///< a frame takes a delay of the user's
        kUnpaced,        ///< rows are sent at once, and the replay time stands still
    };

    struct Settings {
        Mode mode = Mode::kUnpaced;
        int delay = 0;  ///< milliseconds a frame; below 1 the replay time goes by the frequency
    };

    struct Step {
        bool isSent = true;
        std::int32_t sleepTime = 0;  ///< milliseconds before sending
    };

    /// In Hz, in place of a frequency that is not positive.
    static constexpr double kFallbackFrequency = 100.0;
    /// After this counter any other is the next one.
    static constexpr std::int32_t kLastCounter = 65535;

    /// The step to a row. A counter that went back is not sent, and the one before stays.
    Step next(const Settings& settings, std::int32_t counter);

    /// The next row counts as one frame later, whatever its counter.
    void forgetCounter() { lastCounter_ = kNoCounter; }

    /// Hz.
    void setFrequency(double hertz) { frequency_ = hertz; }
    [[nodiscard]] double getFrequency() const { return frequency_; }

    /// Seconds; begins at 0 and never goes back.
    [[nodiscard]] double getTime() const { return time_; }

 private:
    static constexpr std::int32_t kNoCounter = -1;

    double frequency_ = 0.0;
    double time_ = 0.0;
    std::int32_t lastCounter_ = kNoCounter;
};
