#include "host/filters/NumberText.hpp"

#include <charconv>
#include <locale>
#include <sstream>
#include <string>
#include <system_error>

namespace Quoril::Core {
namespace {

// std::from_chars does not tell a number that is too large from one that is too small; a stream
// does. Such numbers are rare, so its cost does not matter.
bool parseBeyondRange(std::string_view text, double& value) {
    std::istringstream stream{std::string(text)};
    stream.imbue(std::locale::classic());
    double parsed = 0.0;
    stream >> parsed;
    if (stream.fail()) return false;
    value = parsed;
    return true;
}

}  // namespace

bool parseNumber(std::string_view text, double& value) {
    if (text.starts_with('+')) {
        text.remove_prefix(1);
        if (text.starts_with('-')) return false;
    }
    const char* const end = text.data() + text.size();
    double parsed = 0.0;
    const auto [parsedEnd, error] = std::from_chars(text.data(), end, parsed);
    if (parsedEnd != end || text.empty()) return false;
    if (error == std::errc::result_out_of_range) return parseBeyondRange(text, value);
    if (error != std::errc()) return false;
    value = parsed;
    return true;
}

std::string_view trimBlanks(std::string_view text) {
    const auto isBlank = [](char c) { return c == ' ' || c == '\t'; };
    while (!text.empty() && isBlank(text.front()))
        text.remove_prefix(1);
    while (!text.empty() && isBlank(text.back()))
        text.remove_suffix(1);
    return text;
}

}  // namespace Quoril::Core
