#include "host/runner/Progress.hpp"

#include "host/runner/Summary.hpp"

#include <algorithm>

#include <fmt/format.h>

namespace Quoril::Runner {

std::string Progress::makeLine(std::chrono::nanoseconds sinceStart,
                               const std::vector<Core::PinReport>& reports) {
    const double seconds = std::chrono::duration<double>(sinceStart).count();
    std::uint64_t rows = 0;
    for (const Core::PinReport& report : reports)
        rows = std::max(rows, report.counters.pushed);
    const double passed = seconds - lastSeconds_;
    const double rate = passed > 0.0 ? static_cast<double>(rows - lastRows_) / passed : 0.0;
    lastSeconds_ = seconds;
    lastRows_ = rows;
    std::string line = fmt::format("{:.1f} s  {} rows  {:.0f} rows/s", seconds, rows, rate);
    if (const std::uint64_t lost = countLost(reports)) line += fmt::format("  {} lost", lost);
    return line;
}

}  // namespace Quoril::Runner
