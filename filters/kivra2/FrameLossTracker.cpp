#include "filters/kivra2/FrameLossTracker.hpp"

void FrameLossTracker::update(std::uint32_t counter) {
    if (isFirst_) {
        isFirst_ = false;
        return;
    }
    if (counter == last_) return;
    std::int64_t difference = std::int64_t{counter} - std::int64_t{last_};
    if (difference < 0) {
        ++wrapCount_;
        difference += std::int64_t{modulus_} + 1;
    }
    seen_ += difference;
    lost_ += difference - 1;
    last_ = counter;
    if (seen_ < kWindow) return;
    lossRatio_ = static_cast<double>(lost_) / static_cast<double>(seen_);
    lost_ = 0;
    seen_ = 0;
}
