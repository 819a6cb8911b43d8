/// Runs a harness over files, and over all files of folders, named on the command line; a folder
/// that is not there holds none. Fails if an input takes longer than the fuzzer allows, or more
/// memory where no sanitizer takes some as well.

#include "fuzz/Harness.hpp"
#include "fuzz/Platform.hpp"

#include <cstdio>
#include <ctime>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);

namespace {

/// Of the processor, in seconds.
constexpr double kTimeLimit = 2.0;
/// In bytes; 0 for none.
constexpr std::size_t kMemoryLimit = std::size_t{QUORIL_MEMORY_LIMIT_MB} * 1024 * 1024;

void runFile(const std::filesystem::path& path) {
    const std::string bytes = Fuzz::readFile(path.string());
    const std::clock_t started = std::clock();
    LLVMFuzzerTestOneInput(reinterpret_cast<const std::uint8_t*>(bytes.data()), bytes.size());
    const double seconds = static_cast<double>(std::clock() - started) / CLOCKS_PER_SEC;
    Fuzz::require(seconds < kTimeLimit, "too slow: " + path.string());
    Fuzz::require(kMemoryLimit == 0 || Fuzz::Platform::peakMemory() <= kMemoryLimit,
                  "too much memory: " + path.string());
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
