#pragma once

// Include this before anything of Eigen, in all files of a program of its own: it replaces operator
// new and Eigen's assertion. Eigen takes its memory from malloc and asserts while that is
// forbidden.

#include <atomic>

namespace FrameworkTest {

extern std::atomic<long> operatorNewCalls;
extern std::atomic<long> eigenAllocations;

}  // namespace FrameworkTest

#define EIGEN_RUNTIME_NO_MALLOC
#define eigen_assert(condition)                              \
    do {                                                     \
        if (!(condition)) ++FrameworkTest::eigenAllocations; \
    } while (false)

#include <Eigen/Core>

namespace FrameworkTest {

/// Number of allocations that the work makes.
template <class Work>
long allocationsOf(Work work) {
    operatorNewCalls = 0;
    eigenAllocations = 0;
    Eigen::internal::set_is_malloc_allowed(false);
    work();
    Eigen::internal::set_is_malloc_allowed(true);
    return operatorNewCalls + eigenAllocations;
}

}  // namespace FrameworkTest
