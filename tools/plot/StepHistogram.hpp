#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

namespace SensorFileTool {

/// The median of any number of positive steps, to a hundredth of itself and in constant memory.
class StepHistogram {
 public:
    StepHistogram();

    /// Steps that are not positive or not finite are left out.
    void add(double step);
    /// 0 if there are none. Exact if all steps are equal. Of an even number of steps, the smaller
    /// of the two in the middle.
    [[nodiscard]] double median() const;

 private:
    /// Steps that differ by less than a hundredth.
    struct Bin {
        std::uint64_t count = 0;
        double mean = 0.0;
    };

    std::vector<Bin> bins_;
    std::uint64_t total_ = 0;
};

}  // namespace SensorFileTool
