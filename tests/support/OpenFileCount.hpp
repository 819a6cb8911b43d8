#pragma once

#include <cstddef>
#include <filesystem>
#include <iterator>

namespace Support {

/// How many files this process holds open.
inline std::size_t openFileCount() {
    const std::filesystem::directory_iterator files("/proc/self/fd");
    return static_cast<std::size_t>(std::distance(begin(files), end(files)));
}

}  // namespace Support
