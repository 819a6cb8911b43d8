#include "host/filters/ImuNoise.hpp"

namespace Quoril::Core {
namespace {

// 2^64 divided by the golden ratio, made odd, and the mixing steps: "SplitMix64", Steele, Lea and
// Flood, "Fast splittable pseudorandom number generators", OOPSLA 2014. Its state only counts, so
// that any place in the sequence is found at once.
constexpr std::uint64_t kStep = 0x9E3779B97F4A7C15U;

constexpr std::uint64_t mix(std::uint64_t bits) {
    bits = (bits ^ (bits >> 30U)) * 0xBF58476D1CE4E5B9U;
    bits = (bits ^ (bits >> 27U)) * 0x94D049BB133111EBU;
    return bits ^ (bits >> 31U);
}

// Each frame has a run of 32 numbers: two for each channel, one for the uniform number, the rest
// spare, so that channels may be added without changing what is there.
constexpr std::uint64_t kDrawsPerFrame = 32;
constexpr std::uint64_t kUniformDraw = 31;

// Mean of the sum of eight numbers from 0 to 65535, and 1 / its deviation, sqrt(8 (2^32 - 1) / 12).
constexpr std::int64_t kMean = 262140;
constexpr double kPerDeviation = 1.0 / 53509.919919761239;

std::int64_t sumOfEight(std::uint64_t a, std::uint64_t b) {
    constexpr std::uint64_t kEven = 0x0000FFFF0000FFFFU;
    const std::uint64_t pairs =
        (a & kEven) + ((a >> 16U) & kEven) + (b & kEven) + ((b >> 16U) & kEven);
    return static_cast<std::int64_t>((pairs & 0xFFFFFFFFU) + (pairs >> 32U));
}

}  // namespace

// Mixed, so that neighbouring seeds start far from each other.
ImuNoise::ImuNoise(std::uint64_t seed) : start_(mix(seed)) {}

std::uint64_t ImuNoise::getBits(std::uint64_t frame, std::uint64_t draw) const {
    return mix(start_ + (frame * kDrawsPerFrame + draw + 1) * kStep);
}

std::array<double, ImuNoise::kChannels> ImuNoise::getNormals(std::uint64_t frame) const {
    std::array<double, kChannels> normals{};
    std::uint64_t draw = 0;
    for (double& normal : normals) {
        const std::int64_t sum = sumOfEight(getBits(frame, draw), getBits(frame, draw + 1));
        normal = static_cast<double>(sum - kMean) * kPerDeviation;
        draw += 2;
    }
    return normals;
}

double ImuNoise::getUniform(std::uint64_t frame) const {
    constexpr double kTwoToMinus53 = 1.0 / 9007199254740992.0;
    return static_cast<double>(getBits(frame, kUniformDraw) >> 11U) * kTwoToMinus53;
}

}  // namespace Quoril::Core
