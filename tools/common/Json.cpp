#include "tools/common/Json.hpp"

#include "text/VisibleText.hpp"

#include <cmath>

namespace SensorFileTool {

namespace {

// Up to here, doubles hold all integers.
constexpr std::uint64_t kExactIntegers = std::uint64_t{1} << 53;

}  // namespace

Json jsonNumber(double value) {
    if (std::isfinite(value)) return value;
    if (std::isnan(value)) return "nan";
    return value > 0.0 ? "inf" : "-inf";
}

Json jsonInteger(std::uint64_t value) {
    if (value <= kExactIntegers) return value;
    return std::to_string(value);
}

std::string jsonLine(const Json& json) {
    return Texts::toVisibleJson(json.dump(-1, ' ', false, Json::error_handler_t::replace)) + '\n';
}

}  // namespace SensorFileTool
