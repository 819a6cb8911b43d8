#include "host/runner/ConnectionQuotes.hpp"

#include <algorithm>
#include <string_view>

namespace Quoril::Runner {

namespace {
constexpr std::string_view kBlanks = " \t\r";
// What begins with one of these is no plain text in YAML.
constexpr std::string_view kIndicators = "\"'{}[],&*!|>%@`#?";

std::string_view trimEnd(std::string_view text) {
    return text.substr(0, text.find_last_not_of(kBlanks) + 1);
}

/// The line without its comment, which begins at a number sign after a blank.
std::string_view withoutComment(std::string_view line) {
    for (std::size_t sign = line.find('#'); sign != std::string_view::npos;
         sign = line.find('#', sign + 1))
        if (sign == 0 || kBlanks.find(line[sign - 1]) != std::string_view::npos)
            return line.substr(0, sign);
    return line;
}

/// True if a new key, or a new document, begins at the line's first column.
bool beginsSection(std::string_view line) {
    if (line.empty() || line.starts_with("---")) return !line.empty();
    return line[0] != '-' && line[0] != '#' && kBlanks.find(line[0]) == std::string_view::npos;
}

/// The connection with settings that is a line's only item; empty if there is none, or if YAML
/// would not take it for a plain text.
std::string_view findBareConnection(std::string_view line) {
    line = trimEnd(withoutComment(line));
    const std::size_t dash = line.find_first_not_of(' ');
    if (dash == std::string_view::npos || line[dash] != '-') return {};
    const std::size_t begin = line.find_first_not_of(' ', dash + 1);
    if (begin == std::string_view::npos || begin == dash + 1) return {};
    const std::string_view item = line.substr(begin);
    const std::size_t brace = item.rfind(" {");
    if (brace == std::string_view::npos || item.back() != '}') return {};
    const std::string_view pins = item.substr(0, brace);
    const bool isPlain = kIndicators.find(item[0]) == std::string_view::npos &&
                         pins.find(": ") == std::string_view::npos;
    return isPlain && pins.find("->") != std::string_view::npos ? item : std::string_view();
}

void appendQuoted(std::string& text, std::string_view item) {
    text += '\'';
    for (const char each : item)
        text.append(each == '\'' ? 2 : 1, each);
    text += '\'';
}
}  // namespace

std::string quoteConnections(const std::string& text) {
    std::string quoted;
    quoted.reserve(text.size());
    bool isInside = false;
    for (std::size_t begin = 0; begin < text.size();) {
        const std::size_t end = std::min(text.find('\n', begin), text.size());
        const std::string_view line = std::string_view(text).substr(begin, end - begin);
        if (beginsSection(line)) isInside = trimEnd(withoutComment(line)) == "connections:";
        const std::string_view item = isInside ? findBareConnection(line) : std::string_view();
        const std::size_t start =
            item.empty() ? line.size() : static_cast<std::size_t>(item.data() - line.data());
        quoted += line.substr(0, start);
        if (!item.empty()) appendQuoted(quoted, item);
        quoted += line.substr(start + item.size());
        if (end < text.size()) quoted += '\n';
        begin = end + 1;
    }
    return quoted;
}

}  // namespace Quoril::Runner
