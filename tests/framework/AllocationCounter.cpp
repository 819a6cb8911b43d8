#include "tests/framework/AllocationCounter.hpp"

#include <cstddef>
#include <cstdlib>
#include <new>

namespace FrameworkTest {

std::atomic<long> operatorNewCalls{0};
std::atomic<long> eigenAllocations{0};

}  // namespace FrameworkTest

void* operator new(std::size_t size) {
    ++FrameworkTest::operatorNewCalls;
    if (void* memory = std::malloc(size == 0 ? 1 : size)) return memory;
    throw std::bad_alloc();
}
void operator delete(void* memory) noexcept {
    std::free(memory);
}
void operator delete(void* memory, std::size_t /*size*/) noexcept {
    std::free(memory);
}
