#include "host/runner/Summary.hpp"

#include "text/VisibleText.hpp"

#include <algorithm>

#include <fmt/format.h>

namespace Quoril::Runner {

namespace {
std::string nameConnection(const Core::PinReport& report) {
    return Texts::toVisible(report.source + " -> " + report.filter + "." + report.pin);
}
}  // namespace

std::uint64_t countLost(const std::vector<Core::PinReport>& reports) {
    std::uint64_t lost = 0;
    for (const Core::PinReport& report : reports)
        if (report.bufferSize > 1) lost += report.counters.overwritten + report.counters.cleared;
    return lost;
}

std::string makeSummary(const std::vector<Core::PinReport>& reports) {
    if (reports.empty()) return "no pin is connected\n";
    std::size_t width = std::string("connection").size();
    for (const Core::PinReport& report : reports)
        width = std::max(width, nameConnection(report).size());
    // Buffers are cleared by rare edits of a running flow only.
    const bool hasCleared = std::any_of(reports.begin(), reports.end(), [](const auto& report) {
        return report.counters.cleared > 0;
    });
    std::string table = fmt::format("{:<{}}  {:>10}  {:>10}  {:>11}  {:>7}", "connection", width,
                                    "pushed", "taken", "overwritten", "waiting");
    if (hasCleared) table += fmt::format("  {:>7}", "cleared");
    for (const Core::PinReport& report : reports) {
        const Core::PinCounters& counters = report.counters;
        table +=
            fmt::format("\n{:<{}}  {:>10}  {:>10}  {:>11}  {:>7}", nameConnection(report), width,
                        counters.pushed, counters.taken, counters.overwritten, report.waiting);
        if (hasCleared) table += fmt::format("  {:>7}", counters.cleared);
    }
    return table + "\n";
}

}  // namespace Quoril::Runner
