#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

namespace SensorFileTool {

/// The median of any number of steps in constant memory: of all of them up to kMaxKept, of evenly
/// spread ones beyond.
class StepMedian {
 public:
    static constexpr std::size_t kMaxKept = 65536;

    void add(double step) {
        if (seen_++ % stride_ == 0) keep(step);
    }
    [[nodiscard]] bool isEmpty() const { return kept_.empty(); }
    /// The middle one, of two the smaller. Not for an empty one.
    [[nodiscard]] double get() const;

 private:
    void keep(double step);

    std::vector<double> kept_;
    std::uint64_t seen_ = 0;
    std::uint64_t stride_ = 1;
};

}  // namespace SensorFileTool
