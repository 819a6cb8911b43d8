#include "tests/support/AllocationCount.hpp"

#include <atomic>
#include <cstdlib>
#include <new>

namespace {

std::atomic<bool> isCounting{false};
std::atomic<std::size_t> allocationCount{0};

void count() {
    if (isCounting.load(std::memory_order_relaxed))
        allocationCount.fetch_add(1, std::memory_order_relaxed);
}

}  // namespace

extern "C" {
void* __real_malloc(std::size_t size);  // NOLINT: the names that --wrap gives
void* __wrap_malloc(std::size_t size);

void* __wrap_malloc(std::size_t size) {
    count();
    return __real_malloc(size);
}
}

void* operator new(std::size_t size) {
    count();
    if (void* memory = __real_malloc(size == 0 ? 1 : size)) return memory;
    throw std::bad_alloc();
}

void operator delete(void* memory) noexcept {
    std::free(memory);
}

void operator delete(void* memory, std::size_t /*size*/) noexcept {
    std::free(memory);
}

namespace Support {

AllocationCount::AllocationCount() {
    allocationCount = 0;
    isCounting = true;
}

AllocationCount::~AllocationCount() {
    isCounting = false;
}

std::size_t AllocationCount::get() const {
    return allocationCount;
}

}  // namespace Support
