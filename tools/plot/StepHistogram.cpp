#include "tools/plot/StepHistogram.hpp"

#include <algorithm>
#include <cmath>

namespace SensorFileTool {

namespace {

// A doubling has this many bins, so that a bin's ends differ by less than 1 %.
constexpr std::size_t kBinsPerDoubling = 128;
// Steps from a hundredth of a picosecond to millennia, in nanoseconds as in seconds.
constexpr int kMinExponent = -46;
constexpr int kMaxExponent = 70;
constexpr std::size_t kBinCount =
    static_cast<std::size_t>(kMaxExponent - kMinExponent + 1) * kBinsPerDoubling;

std::size_t binOf(double step) {
    int exponent = 0;
    const double fraction = std::frexp(step, &exponent);  // 0.5 to 1
    if (exponent < kMinExponent) return 0;
    if (exponent > kMaxExponent) return kBinCount - 1;
    const auto doublings = static_cast<std::size_t>(exponent - kMinExponent);
    return doublings * kBinsPerDoubling +
           static_cast<std::size_t>((fraction - 0.5) * 2.0 * static_cast<double>(kBinsPerDoubling));
}

}  // namespace

StepHistogram::StepHistogram() : bins_(kBinCount) {}

void StepHistogram::add(double step) {
    if (!(step > 0.0) || !std::isfinite(step)) return;
    Bin& bin = bins_[binOf(step)];
    ++bin.count;
    bin.mean += (step - bin.mean) / static_cast<double>(bin.count);
    ++total_;
}

double StepHistogram::median() const {
    if (total_ == 0) return 0.0;
    std::uint64_t left = (total_ + 1) / 2;
    auto bin = bins_.begin();
    for (; bin->count < left; ++bin)
        left -= bin->count;
    return bin->mean;
}

}  // namespace SensorFileTool
