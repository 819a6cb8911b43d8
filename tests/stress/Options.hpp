#pragma once

#include <chrono>
#include <cstdint>
#include <string>
#include <vector>

namespace Stress {

/// Something that the program does wrong on purpose, to show that it would be noticed.
enum class Sabotage {
    kNone,
    kDeadlock,    ///< two threads take two layouts' locks in opposite orders
    kLostSample,  ///< a sample vanishes from a buffer without being counted
    kLostRow,     ///< a closed recording loses its last row
    kTornRow,     ///< a closed recording loses its last byte
    kLeak,        ///< memory is not freed
};

struct Options {
    std::uint64_t seed = 1;
    std::chrono::seconds duration{10};
    /// The longest time that a thread may make no progress.
    std::chrono::seconds patience{60};
    Sabotage sabotage = Sabotage::kNone;
};

/// @param arguments  "--seed", "--seconds", "--patience" and a number each; "--sabotage" and one of
///                   "deadlock", "lost-sample", "lost-row", "torn-row", "leak"
/// @throws Poco::InvalidArgumentException
[[nodiscard]] Options parseOptions(const std::vector<std::string>& arguments);

}  // namespace Stress
