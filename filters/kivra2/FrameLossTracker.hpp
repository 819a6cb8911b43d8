#pragma once

#include <cstdint>

/// Measures from a unit's frame counter which share of its frames is lost.
///
/// The first value only starts the measure and is not kept: counting begins from 0, so that a
/// recording which starts at frame 100 reports those 100 as lost in its first window. There is no
/// reset: a counter that begins anew counts as a wrap.
class FrameLossTracker {
 public:
    /// Frames after which the ratio is computed anew.
    static constexpr std::int64_t kWindow = 200;

    /// @param modulus  the highest counter value before it wraps to 0
    explicit FrameLossTracker(std::uint32_t modulus) : modulus_(modulus) {}

    void update(std::uint32_t counter);

    /// Lost frames to all frames of the last full window, from 0 to 1; 0 before there is one.
    [[nodiscard]] double getLossRatio() const { return lossRatio_; }
    [[nodiscard]] std::uint32_t getWrapCount() const { return wrapCount_; }

 private:
    const std::uint32_t modulus_;
    bool isFirst_ = true;
    std::uint32_t last_ = 0;
    std::uint32_t wrapCount_ = 0;
    double lossRatio_ = 0.0;
    std::int64_t lost_ = 0;
    std::int64_t seen_ = 0;
};
