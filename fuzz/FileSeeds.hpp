#pragma once

#include <filesystem>
#include <string>
#include <string_view>

namespace Fuzz {

/// Writes the choices and then the bytes as the folder's file of that name.
void writeSeed(const std::filesystem::path& folder, const std::string& name,
               std::string_view choices, std::string_view bytes);

/// Seeds of the harnesses of header sections.
void writeHeaderSeeds(const std::filesystem::path& folder, bool binary);

}  // namespace Fuzz
