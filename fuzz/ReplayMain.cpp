/// Runs a harness over files, and over all files of folders, named on the command line.

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);

namespace {

void runFile(const std::filesystem::path& path) {
    std::ifstream file(path, std::ios::binary);
    const std::string bytes{std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
    LLVMFuzzerTestOneInput(reinterpret_cast<const std::uint8_t*>(bytes.data()), bytes.size());
}

int runAll(const std::filesystem::path& path) {
    if (!std::filesystem::is_directory(path)) {
        runFile(path);
        return 1;
    }
    int count = 0;
    for (const auto& entry : std::filesystem::recursive_directory_iterator(path)) {
        if (!entry.is_regular_file()) continue;
        runFile(entry.path());
        ++count;
    }
    return count;
}

}  // namespace

int main(int argc, char** argv) {
    int count = 0;
    for (int i = 1; i < argc; ++i)
        count += runAll(argv[i]);
    std::printf("%d inputs\n", count);
    return count > 0 ? 0 : 1;
}
