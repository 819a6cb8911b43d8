#include "tests/stress/MemoryWatch.hpp"

#include "tests/stress/Failure.hpp"
#include "tests/stress/Platform.hpp"

#include <algorithm>

#include <fmt/format.h>

namespace Stress {

namespace {

/// Seasons after which everything that is made once has been made.
constexpr std::size_t kWarmUp = 3;
/// What the least season after the warm-up may be exceeded by, bytes. The thread caches of the C
/// library's allocator, which would count as allocated, are switched off by the environment.
constexpr std::size_t kBound = std::size_t{16} * 1024;

double kib(std::size_t bytes) {
    return static_cast<double>(bytes) / 1024.0;
}

}  // namespace

void MemoryWatch::look() {
    heaps_.push_back(countHeapBytes());
    if (heaps_.size() == kWarmUp) residentAfterWarmUp_ = countResidentBytes();
    if (heaps_.size() <= kWarmUp) return;
    const std::size_t least = *std::min_element(heaps_.begin() + kWarmUp - 1, heaps_.end());
    if (heaps_.back() > least + kBound)
        fail(fmt::format("memory grows: {:.0f} KiB allocated after season {}, {:.0f} KiB before",
                         kib(heaps_.back()), heaps_.size(), kib(least)));
}

void MemoryWatch::report(std::size_t largestHeap) const {
    if (heaps_.size() <= kWarmUp) return;
    const auto warm = heaps_.begin() + kWarmUp - 1;
    say(
        fmt::format("memory between seasons: {:.0f} KiB after the warm-up, {:.0f} KiB at the end, "
                    "{:.0f} to {:.0f} KiB; within seasons up to {:.0f} KiB; resident {:.0f} MiB, "
                    "then {:.0f} MiB",
                    kib(*warm), kib(heaps_.back()), kib(*std::min_element(warm, heaps_.end())),
                    kib(*std::max_element(warm, heaps_.end())), kib(largestHeap),
                    kib(residentAfterWarmUp_) / 1024.0, kib(countResidentBytes()) / 1024.0));
}

}  // namespace Stress
