/// Runs a harness over files, and over all files of folders, named on the command line; a folder
/// that is not there holds none. Fails if an input takes longer than the fuzzer allows.

#include "fuzz/Harness.hpp"

#include <chrono>
#include <cstdio>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);

namespace {

constexpr std::chrono::seconds kLimit(2);

void runFile(const std::filesystem::path& path) {
    const std::string bytes = Fuzz::readFile(path.string());
    const auto started = std::chrono::steady_clock::now();
    LLVMFuzzerTestOneInput(reinterpret_cast<const std::uint8_t*>(bytes.data()), bytes.size());
    Fuzz::require(std::chrono::steady_clock::now() - started < kLimit,
                  "too slow: " + path.string());
}

int runAll(const std::filesystem::path& path) {
    if (std::filesystem::is_regular_file(path)) {
        runFile(path);
        return 1;
    }
    if (!std::filesystem::exists(path)) return 0;
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
