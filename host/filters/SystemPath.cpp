#include "host/filters/SystemPath.hpp"

namespace Quoril::Core {

std::filesystem::path toSystemPath(const std::string& path) {
    return {std::u8string(path.begin(), path.end())};
}

}  // namespace Quoril::Core
