#pragma once

#include <cstddef>

namespace Support {

/// Counts what the program allocates on the heap, in all threads, during its scope: operator new
/// and malloc (which Eigen calls for its matrices). Comes with the library
/// test_allocation_count.
class AllocationCount {
 public:
    AllocationCount();
    ~AllocationCount();
    AllocationCount(const AllocationCount&) = delete;
    AllocationCount& operator=(const AllocationCount&) = delete;

    /// Allocations since the construction.
    [[nodiscard]] std::size_t get() const;
};

}  // namespace Support
