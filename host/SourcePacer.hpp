#pragma once

#include "framework/Export.hpp"
#include "host/Clock.hpp"

#include <chrono>
#include <optional>

namespace Quoril::Core {

/// Says when a source is due, by absolute deadlines: a late call delays none after it.
class QUORIL_CORE_API SourcePacer {
 public:
    using Instant = Clock::Instant;

    /// A step of the time stamps beyond this many seconds is a jump, not a pace: the source goes
    /// on at once, and its time is counted from the new stamp.
    static constexpr double kLongestStep = 60.0;
    /// A source that sent nothing for a while (it was paused, say) goes on from now if it is late
    /// by more than this; below, it catches up.
    static constexpr std::chrono::milliseconds kIdleSlack{100};

    /// A run begins: nothing was called yet.
    void begin() { *this = SourcePacer(); }

    /// When a row is due by the source's own time. The first row asked about is due now, and all
    /// later ones as long after it as their times say; so is a row whose time went back, as after
    /// a rewind.
    /// @param seconds  the row's time, from a start of the source's choosing
    Instant getOwnDue(double seconds, Instant now);
    /// The source has no pace for the moment (it is paused, say): its next time is due at once.
    void forgetOwnTime() { ownStart_.reset(); }

    /// Tells of the time stamp that a call pushed last, in seconds.
    /// @param factor  seconds of stamps per second of time
    void notePush(double stamp, double factor, Instant now);
    /// Tells of a call that pushed nothing.
    void noteIdle() { wasIdle_ = true; }
    /// When the next row is due by its stamps: when the time of the last one has come.
    [[nodiscard]] std::optional<Instant> getStampDue() const { return stampDue_; }

 private:
    void rebase(double stamp, Instant start);

    std::optional<Instant> ownStart_;  ///< when the source's own time was 0
    double lastOwnTime_ = 0.0;
    std::optional<Instant> stampDue_;
    Instant start_{};
    double firstStamp_ = 0.0;
    double lastStamp_ = 0.0;
    bool wasIdle_ = false;
};

}  // namespace Quoril::Core
