#include "tools/parts/CounterCheck.hpp"

namespace SensorFileTool {

namespace {

// Nobody reads more.
constexpr std::size_t kMaxGaps = 20;

}  // namespace

void CounterCheck::see(const Row& row, std::size_t part, std::uint64_t rowNumber) {
    const std::uint64_t number = counter_.numberOf(row);
    if (hasLast_) {
        const CounterColumn::Step step = counter_.stepBetween(last_, number);
        if (step.missing > 0 || step.isRepeated || step.isBackward) {
            ++gapCount_;
            missing_ += step.missing;
            if (gaps_.size() < kMaxGaps) gaps_.push_back({part, rowNumber, step});
        }
    }
    last_ = number;
    hasLast_ = true;
}

}  // namespace SensorFileTool
