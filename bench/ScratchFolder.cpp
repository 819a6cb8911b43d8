#include "bench/ScratchFolder.hpp"

#include <random>
#include <system_error>

namespace Bench {

const ScratchFolder& ScratchFolder::instance() {
    static const ScratchFolder folder;
    return folder;
}

ScratchFolder::ScratchFolder() {
    std::random_device random;
    do {
        path_ =
            std::filesystem::temp_directory_path() / ("quoril-bench-" + std::to_string(random()));
    } while (!std::filesystem::create_directory(path_));
}

ScratchFolder::~ScratchFolder() {
    std::error_code ignored;
    std::filesystem::remove_all(path_, ignored);
}

std::string ScratchFolder::file(const std::string& name) const {
    return (path_ / name).string();
}

}  // namespace Bench
