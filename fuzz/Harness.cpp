#include "fuzz/Harness.hpp"

#include <bit>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <iterator>
#include <random>

namespace Fuzz {

namespace {
class ScratchFolder {
 public:
    ScratchFolder() {
        std::error_code none;
        const std::filesystem::path memory = "/dev/shm";
        const std::filesystem::path parent = std::filesystem::is_directory(memory, none)
                                                 ? memory
                                                 : std::filesystem::temp_directory_path();
        std::random_device random;
        do {
            path_ = parent / ("fuzz." + std::to_string(random()));
        } while (!std::filesystem::create_directory(path_));
    }
    ~ScratchFolder() {
        std::error_code ignored;
        std::filesystem::remove_all(path_, ignored);
    }
    ScratchFolder(const ScratchFolder&) = delete;
    ScratchFolder& operator=(const ScratchFolder&) = delete;

    [[nodiscard]] const std::filesystem::path& getPath() const { return path_; }

 private:
    std::filesystem::path path_;
};
}  // namespace

void fail(std::string_view text) {
    (void)std::fprintf(stderr, "found: %.*s\n", static_cast<int>(text.size()), text.data());
    std::abort();
}

std::string scratchPath(const std::string& name) {
    static const ScratchFolder folder;
    return (folder.getPath() / name).string();
}

void writeFile(const std::string& path, std::string_view bytes) {
    std::ofstream file(path, std::ios::binary);
    file.write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
    file.close();
    require(file.good(), "the scratch file cannot be written");
}

std::string readFile(const std::string& path) {
    std::ifstream file(path, std::ios::binary);
    require(file.is_open(), "there is no scratch file");
    return {std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
}

}  // namespace Fuzz
