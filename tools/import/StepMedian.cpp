#include "tools/import/StepMedian.hpp"

#include <algorithm>

namespace SensorFileTool {

void StepMedian::keep(double step) {
    if (kept_.size() == kMaxKept) {
        for (std::size_t i = 0; i < kMaxKept / 2; ++i)
            kept_[i] = kept_[2 * i];
        kept_.resize(kMaxKept / 2);
        stride_ *= 2;
    }
    kept_.push_back(step);
}

double StepMedian::get() const {
    std::vector<double> steps = kept_;
    const auto middle = steps.begin() + static_cast<std::ptrdiff_t>((steps.size() - 1) / 2);
    std::nth_element(steps.begin(), middle, steps.end());
    return *middle;
}

}  // namespace SensorFileTool
