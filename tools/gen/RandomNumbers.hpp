#pragma once

#include <array>
#include <bit>
#include <cstdint>

namespace SensorFileTool {

/// Random numbers that depend on the seed alone, equal on every machine (what the distributions of
/// the standard library are not): the generator xoshiro256++, started by splitmix64, both by
/// D. Blackman and S. Vigna, prng.di.unimi.it.
class RandomNumbers {
 public:
    explicit RandomNumbers(std::uint64_t seed) {
        for (std::uint64_t& word : state_)
            word = mix(seed += 0x9e3779b97f4a7c15U);
    }

    /// 64 random bits.
    std::uint64_t next() {
        const std::uint64_t result = std::rotl(state_[0] + state_[3], 23) + state_[0];
        const std::uint64_t shifted = state_[1] << 17U;
        state_[2] ^= state_[0];
        state_[3] ^= state_[1];
        state_[1] ^= state_[2];
        state_[0] ^= state_[3];
        state_[2] ^= shifted;
        state_[3] = std::rotl(state_[3], 45);
        return result;
    }

    /// An integer around 0, distributed nearly as the normal distribution: the sum of four even
    /// ones. Never further from 0 than 3.5 deviations.
    /// @param deviation  the standard deviation, up to 2^40
    std::int64_t noise(std::int64_t deviation) {
        // The deviation and the mean of the sum of four numbers from 0 to 65535.
        constexpr std::int64_t kSumDeviation = 37837;
        constexpr std::int64_t kSumMean = std::int64_t{2} * 65535;
        const std::uint64_t bits = next();
        const std::uint64_t sum =
            (bits & kLane) + (bits >> 16U & kLane) + (bits >> 32U & kLane) + (bits >> 48U);
        return (static_cast<std::int64_t>(sum) - kSumMean) * deviation / kSumDeviation;
    }

 private:
    static constexpr std::uint64_t kLane = 0xffff;

    static std::uint64_t mix(std::uint64_t word) {
        word = (word ^ word >> 30U) * 0xbf58476d1ce4e5b9U;
        word = (word ^ word >> 27U) * 0x94d049bb133111ebU;
        return word ^ word >> 31U;
    }

    std::array<std::uint64_t, 4> state_{};
};

}  // namespace SensorFileTool
