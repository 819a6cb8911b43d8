#pragma once

#include <bit>
#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <string>
#include <string_view>

namespace Fuzz {

/// What a harness found to be wrong: writes the text to the error stream and aborts, which is what
/// the fuzzer takes for a finding.
[[noreturn]] void fail(std::string_view text);

/// Fails with the text unless the condition holds.
inline void require(bool holds, std::string_view text) {
    if (!holds) fail(text);
}

/// True if both are NaN, or have the same bits: what "the same value" means in every harness.
[[nodiscard]] inline bool isSame(double a, double b) {
    return std::bit_cast<std::uint64_t>(a) == std::bit_cast<std::uint64_t>(b) || (a != a && b != b);
}

/// The path of a file of that name in a folder of this process, which is removed at its end. It
/// lies in memory where the system offers such a folder, since harnesses run thousands of inputs a
/// second.
[[nodiscard]] std::string scratchPath(const std::string& name);

/// Writes the bytes as the whole file; fails if they cannot be written.
void writeFile(const std::string& path, std::string_view bytes);

/// All bytes of a file; fails if there is none.
[[nodiscard]] std::string readFile(const std::string& path);

/// The input as text; empty if size is 0.
[[nodiscard]] inline std::string_view toText(const std::uint8_t* data, std::size_t size) {
    return size == 0 ? std::string_view()
                     : std::string_view(reinterpret_cast<const char*>(data), size);
}

}  // namespace Fuzz
