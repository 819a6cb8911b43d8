#pragma once

#include <filesystem>
#include <string>

namespace Quoril::Core {

/// A path, UTF-8 here on every system, as the system's streams take it.
[[nodiscard]] std::filesystem::path toSystemPath(const std::string& path);

}  // namespace Quoril::Core
