#include "tests/sensorfile/AllocationCount.hpp"

#include <atomic>
#include <cstdlib>
#include <new>

namespace SensorFile::AllocationCount {
namespace {

std::atomic<std::size_t> callCount{0};
std::atomic<std::size_t> byteCount{0};

void* allocate(std::size_t size) {
    callCount.fetch_add(1, std::memory_order_relaxed);
    byteCount.fetch_add(size, std::memory_order_relaxed);
    void* const memory = std::malloc(size > 0 ? size : 1);
    if (memory == nullptr) throw std::bad_alloc();
    return memory;
}

}  // namespace

std::size_t calls() {
    return callCount.load();
}
std::size_t bytes() {
    return byteCount.load();
}

}  // namespace SensorFile::AllocationCount

void* operator new(std::size_t size) {
    return SensorFile::AllocationCount::allocate(size);
}
void* operator new[](std::size_t size) {
    return SensorFile::AllocationCount::allocate(size);
}
void operator delete(void* memory) noexcept {
    std::free(memory);
}
void operator delete[](void* memory) noexcept {
    std::free(memory);
}
void operator delete(void* memory, std::size_t) noexcept {
    std::free(memory);
}
void operator delete[](void* memory, std::size_t) noexcept {
    std::free(memory);
}
