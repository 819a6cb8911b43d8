#include "fuzz/Platform.hpp"

#if defined(__linux__)
#include <sys/resource.h>
#endif

namespace Fuzz::Platform {

std::size_t peakMemory() {
#if defined(__linux__)
    rusage usage{};
    getrusage(RUSAGE_SELF, &usage);
    return static_cast<std::size_t>(usage.ru_maxrss) * 1024;
#else
    return 0;
#endif
}

}  // namespace Fuzz::Platform
