#pragma once

#include "framework/Export.hpp"

#include <array>
#include <cstdint>

namespace Quoril::Core {

/// Random numbers of a simulated inertial unit, the same for a seed on every platform: integers do
/// all the work, and the last step is one exact conversion and one multiplication.
///
/// The numbers of a frame depend on the seed and the frame's place alone, not on what was asked
/// before.
class QUORIL_CORE_API ImuNoise {
 public:
    static constexpr int kChannels = 9;

    explicit ImuNoise(std::uint64_t seed);

    /// Numbers of mean 0 and standard deviation 1, nearly normal: each is the sum of eight uniform
    /// ones, and so never beyond 4.9 deviations.
    [[nodiscard]] std::array<double, kChannels> getNormals(std::uint64_t frame) const;

    /// A number from 0 up to, but not, 1.
    [[nodiscard]] double getUniform(std::uint64_t frame) const;

 private:
    [[nodiscard]] std::uint64_t getBits(std::uint64_t frame, std::uint64_t draw) const;

    std::uint64_t start_;
};

}  // namespace Quoril::Core
