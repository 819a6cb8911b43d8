#include "sensorfile/ValueCast.hpp"

namespace SensorFile {

std::uint64_t lowBitsOfLarge(double value) noexcept {
    if (!std::isfinite(value)) return 0;
    const double rest = std::fmod(value, 0x1p64);  // exact
    const auto magnitude = static_cast<std::uint64_t>(std::abs(rest));
    return rest < 0 ? 0 - magnitude : magnitude;
}

}  // namespace SensorFile
