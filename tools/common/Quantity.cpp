#include "tools/common/Quantity.hpp"

#include "sensorfile/NumberText.hpp"
#include "tools/common/UsageException.hpp"

#include <array>
#include <cmath>
#include <span>
#include <string_view>

#include <fmt/format.h>

namespace SensorFileTool {

namespace {

struct Unit {
    std::string_view name;
    double factor;
};

constexpr std::array kDurations = {Unit{"s", 1.0}, Unit{"ms", 1e-3}, Unit{"us", 1e-6},
                                   Unit{"ns", 1e-9}};
constexpr std::array kShares = {Unit{"%", 1e-2}, Unit{"ppm", 1e-6}};
constexpr std::array kCounts = {Unit{"", 1.0}};
constexpr double kPercent = 100.0;

Quantity parse(const std::string& option, const std::string& text, std::span<const Unit> units,
               const char* examples) {
    double number = 0.0;
    const char* const end = text.data() + text.size();
    const auto result = SensorFile::parseDouble(text.data(), end, number);
    std::string_view rest(result.ptr, static_cast<std::size_t>(end - result.ptr));
    while (!rest.empty() && rest.front() == ' ')
        rest.remove_prefix(1);
    for (const Unit& unit : units)
        if (result.ec == std::errc() && rest == unit.name && number >= 0.0 && std::isfinite(number))
            return {text, number * unit.factor};
    throw UsageException(fmt::format("{}: '{}' is not such as {}", option, text, examples));
}

}  // namespace

Quantity parseDuration(const std::string& option, const std::string& text) {
    return parse(option, text, kDurations, "1ms, 0.5s, 20us or 100ns");
}

Quantity parseRatio(const std::string& option, const std::string& text) {
    return parse(option, text, kShares, "0.1% or 50ppm");
}

Quantity parseCount(const std::string& option, const std::string& text) {
    Quantity count = parse(option, text, kCounts, "0 or 10");
    if (std::floor(count.value) != count.value)
        throw UsageException(fmt::format("{}: '{}' is no whole number", option, text));
    return count;
}

std::string describeDuration(double seconds, int digits) {
    // A little less than the unit would be rounded up to "1000 ms".
    constexpr double kAlmost = 0.99995;
    constexpr double kNothing = 5e-13;  // what doubles leave of differences of equal steps
    for (const Unit& unit : kDurations)
        if (std::abs(seconds) >= unit.factor * kAlmost || &unit == &kDurations.back())
            return std::abs(seconds) < kNothing
                       ? "0 s"
                       : fmt::format("{:.{}g} {}", seconds / unit.factor, digits, unit.name);
    return "";
}

std::string describeShare(double share) {
    return fmt::format("{:.3g} %", share * kPercent);
}

}  // namespace SensorFileTool
