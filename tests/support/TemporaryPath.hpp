#pragma once

#include <atomic>
#include <cstdint>
#include <filesystem>
#include <random>
#include <string>

namespace Support {

/// A path in the temporary folder at which nothing lies. Process numbers come again, and tests that
/// were killed leave things behind: hence the random tag.
inline std::string uniqueTemporaryPath() {
    static const std::uint32_t kProcessTag = std::random_device{}();
    static std::atomic<int> next{0};
    const auto name = "quoril-" + std::to_string(kProcessTag) + "-" + std::to_string(next++);
    return (std::filesystem::temp_directory_path() / name).string();
}

}  // namespace Support
