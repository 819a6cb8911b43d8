#pragma once

#include <cstdint>

/// Decides for each row of a replay how long to wait and which time stamp to send it with.
///
/// Knows nothing of threads or files: it is told the row's time stamp and answers. The replay time
/// begins at 0 s and goes on over stops and starts.
class ReplayPacing {
 public:
    /// How a file's time-stamp column is read: as a count of frames, or as seconds.
    enum class Mode { kTicks, kFrameNumber };

    struct Settings {
        Mode mode = Mode::kTicks;
        bool usesFileTime = true;  ///< pace by the file's time-stamp column
        int delay = 10;            ///< between rows otherwise, milliseconds
        bool isQuick = false;      ///< never sleep
    };

    struct Step {
        bool isSent = true;          ///< false: the row is passed over
        bool endsFileTime = false;   ///< the column is of no use: do without it from now on
        std::int32_t sleepTime = 0;  ///< before sending, milliseconds
    };

    /// Used by "Ticks" when the file tells no frequency, Hz.
    static constexpr double kFallbackFrequency = 100.0;
    /// The frame number after which the 16-bit counter begins again at 0.
    static constexpr std::int64_t kLastFrame = 65535;
    /// In "FrameNumber" mode a step of so many seconds, or none, or one back, ends the use of the
    /// column.
    static constexpr double kLongestStep = 10.0;

    /// Rows per second in Hz, 0 when unknown.
    void setFrequency(double hertz) { frequency_ = hertz; }
    [[nodiscard]] double getFrequency() const { return frequency_; }

    /// The next row comes from the file's beginning: its frame number follows none.
    void forgetFrame() { lastFrame_ = kNoFrame; }

    /// Moves on to the next row. A row that is passed over leaves the replay time alone.
    /// @param fileTime  the row's value in the time-stamp column, if that is used
    Step next(const Settings& settings, double fileTime);

    /// Time stamp of the row, seconds.
    [[nodiscard]] double getTime() const { return time_; }

 private:
    static constexpr std::int64_t kNoFrame = -1;

    Step tickByDelay(const Settings& settings);
    Step tickByFrame(const Settings& settings, double fileTime);
    Step followDelay(const Settings& settings);
    Step followFileTime(const Settings& settings, double fileTime);
    void requireFrequency();

    double frequency_ = 0.0;
    double time_ = 0.0;
    std::int64_t lastFrame_ = kNoFrame;
};
