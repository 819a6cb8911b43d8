#include "fuzz/FileSeeds.hpp"
#include "fuzz/Seeds.hpp"

void Fuzz::writeSeeds(const std::filesystem::path& folder) {
    writeHeaderSeeds(folder, /*binary=*/true);
}
