#pragma once

#include <cstddef>

/// What the harnesses ask of the operating system.
namespace Fuzz::Platform {

/// Most bytes of memory that the process has held so far; 0 where the system does not tell.
[[nodiscard]] std::size_t peakMemory();

}  // namespace Fuzz::Platform
