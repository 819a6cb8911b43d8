#include "host/runner/Summary.hpp"

#include <algorithm>

#include <fmt/format.h>

namespace Quoril::Runner {

namespace {
std::string nameConnection(const Core::PinReport& report) {
    return report.source + " -> " + report.filter + "." + report.pin;
}
}  // namespace

std::uint64_t countLost(const std::vector<Core::PinReport>& reports) {
    std::uint64_t lost = 0;
    for (const Core::PinReport& report : reports)
        if (report.bufferSize > 1) lost += report.counters.overwritten;
    return lost;
}

std::string makeSummary(const std::vector<Core::PinReport>& reports) {
    if (reports.empty()) return "no pin is connected\n";
    std::size_t width = std::string("connection").size();
    for (const Core::PinReport& report : reports)
        width = std::max(width, nameConnection(report).size());
    std::string table = fmt::format("{:<{}}  {:>10}  {:>10}  {:>11}  {:>7}\n", "connection", width,
                                    "pushed", "taken", "overwritten", "waiting");
    for (const Core::PinReport& report : reports)
        table += fmt::format("{:<{}}  {:>10}  {:>10}  {:>11}  {:>7}\n", nameConnection(report),
                             width, report.counters.pushed, report.counters.taken,
                             report.counters.overwritten, report.waiting);
    return table;
}

}  // namespace Quoril::Runner
