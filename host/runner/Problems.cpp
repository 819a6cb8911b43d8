#include "host/runner/Problems.hpp"

#include "text/VisibleText.hpp"

#include <algorithm>
#include <tuple>

#include <fmt/format.h>

namespace Quoril::Runner {

namespace {
constexpr std::size_t kMostLines = 50;

std::string toLine(const Problem& problem) {
    const char* prefix = problem.severity == Severity::kWarning ? "warning: " : "";
    const std::string place = problem.place.toText();
    return Texts::toVisible(
               fmt::format("{}{}{}{}", place, place.empty() ? "" : ": ", prefix, problem.text)) +
           '\n';
}
}  // namespace

std::string Place::toText() const {
    if (line == 0) return source;
    return fmt::format("{}:{}:{}", source, line, column);
}

void Problems::add(const Place& place, const std::string& text, Severity severity) {
    list_.push_back({place, text, severity});
}

void Problems::warn(const Place& place, const std::string& text) {
    add(place, text, Severity::kWarning);
}

bool Problems::hasErrors() const noexcept {
    return getExitCode() != 0;
}

int Problems::getExitCode() const noexcept {
    int code = 0;
    for (const Problem& problem : list_) {
        if (problem.severity == Severity::kWrongInput) return 2;
        if (problem.severity == Severity::kFailure) code = 1;
    }
    return code;
}

std::string Problems::toText() const {
    std::vector<Problem> sorted = list_;
    std::stable_sort(sorted.begin(), sorted.end(), [](const Problem& a, const Problem& b) {
        return std::tie(a.place.source, a.place.line, a.place.column) <
               std::tie(b.place.source, b.place.line, b.place.column);
    });
    std::string lines;
    for (std::size_t i = 0; i < std::min(sorted.size(), kMostLines); ++i)
        lines += toLine(sorted[i]);
    if (sorted.size() > kMostLines)
        lines += fmt::format("and {} more\n", sorted.size() - kMostLines);
    return lines;
}

}  // namespace Quoril::Runner
