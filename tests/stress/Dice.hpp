#pragma once

#include <cstddef>
#include <cstdint>
#include <random>

namespace Stress {

/// Random choices of one thread, from a seed.
class Dice {
 public:
    explicit Dice(std::uint64_t seed) : engine_(seed) {}

    /// 0 to count - 1; the count is above 0.
    std::size_t below(std::size_t count) {
        return std::uniform_int_distribution<std::size_t>(0, count - 1)(engine_);
    }
    bool chance(unsigned percent) { return below(100) < percent; }

    template <class List>
    auto& pick(List& list) {
        return list[below(std::size(list))];
    }

 private:
    std::mt19937_64 engine_;
};

}  // namespace Stress
