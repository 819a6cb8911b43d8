/// Writes the seeds of a harness into the folder named on the command line, making it anew.

#include "fuzz/Seeds.hpp"

int main(int argc, char** argv) {
    if (argc != 2) return 2;
    const std::filesystem::path folder = argv[1];
    std::filesystem::remove_all(folder);
    std::filesystem::create_directories(folder);
    Fuzz::writeSeeds(folder);
    return std::filesystem::is_empty(folder) ? 1 : 0;
}
