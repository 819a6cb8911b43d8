#include "host/runner/TimeText.hpp"

#include "host/runner/NumberText.hpp"

#include <cmath>

#include <Poco/Exception.h>

namespace Quoril::Runner {

namespace {
struct Unit {
    std::string_view name;
    double nanoseconds;
};
// "ms" stands before "s", since it ends like it.
constexpr Unit kUnits[] = {{"ms", 1e6}, {"s", 1e9}, {"min", 60e9}};
constexpr double kLongest = 1000.0 * 24 * 3600 * 1e9;

[[noreturn]] void refuse(const std::string& text) {
    throw Poco::DataFormatException("'" + text + "' is not a time; write e.g. 200ms, 1.5s or 2min");
}

std::string_view withoutTrailingBlanks(std::string_view text) {
    return text.substr(0, text.find_last_not_of(' ') + 1);
}
}  // namespace

std::chrono::nanoseconds parseTime(const std::string& text) {
    for (const Unit& unit : kUnits) {
        const std::string_view all = text;
        if (!all.ends_with(unit.name)) continue;
        const auto number = parseNumber<double>(
            withoutTrailingBlanks(all.substr(0, all.size() - unit.name.size())));
        if (!number || *number < 0.0) refuse(text);
        const double nanoseconds = *number * unit.nanoseconds;
        if (nanoseconds > kLongest)
            throw Poco::DataFormatException("'" + text + "' is longer than 1000 days");
        return std::chrono::nanoseconds(std::llround(nanoseconds));
    }
    refuse(text);
}

}  // namespace Quoril::Runner
