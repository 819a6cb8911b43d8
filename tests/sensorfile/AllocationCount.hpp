#pragma once

#include <cstddef>

/// What the test program has taken from the heap so far, by any operator new.
namespace SensorFile::AllocationCount {

std::size_t calls();
std::size_t bytes();

}  // namespace SensorFile::AllocationCount
