#pragma once

#include <filesystem>
#include <string>

namespace Fuzz {

/// Writes the seeds of one harness, a file each, into a folder that is there. Each seeds program
/// defines its own.
void writeSeeds(const std::filesystem::path& folder);

}  // namespace Fuzz
