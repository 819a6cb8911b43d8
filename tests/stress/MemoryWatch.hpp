#pragma once

#include <cstddef>
#include <vector>

namespace Stress {

/// Compares what the program has allocated at moments at which it should have allocated the same.
class MemoryWatch {
 public:
    /// Call between seasons. Growth is a failure of the program.
    void look();

    /// A line with what was measured.
    void report(std::size_t largestHeap) const;

 private:
    std::vector<std::size_t> heaps_;
    std::size_t residentAfterWarmUp_ = 0;
};

}  // namespace Stress
