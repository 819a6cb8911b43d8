#include "tools/statistics/TimeAnalysis.hpp"

#include "tools/recording/RowReader.hpp"
#include "tools/statistics/CounterAnalysis.hpp"
#include "tools/statistics/StampAnalysis.hpp"

#include <algorithm>
#include <iterator>

#include <fmt/format.h>

namespace SensorFileTool {

namespace {

/// One pass over all rows.
std::uint64_t readRows(Recording& recording, std::vector<CounterAnalysis>& counters,
                       std::optional<StampAnalysis>& stamps, Progress& progress) {
    RowReader rows(recording);
    Row before;
    std::uint64_t number = 0;
    for (; rows.next(); ++number) {
        for (CounterAnalysis& counter : counters)
            counter.add(rows.row(), number);
        if (stamps)
            stamps->add(number == 0 ? nullptr : &before, rows.row(), number,
                        counters.empty() ? 0.0 : counters.front().getCount());
        rows.exchangeRow(before);
        progress.show(static_cast<std::uint64_t>(recording.getReader().position()));
    }
    return number;
}

/// The counter by which stamps are lined up, so that rows that were lost or repeated do not count
/// as drift; empty if it would say nothing else than the rows, or nonsense.
std::string findTrusted(const TimeReport& report) {
    if (report.counters.empty()) return "";
    const CounterReport& first = report.counters.front();
    const bool isOther = first.jumps.count > 0 || first.repeated.count > 0;
    const bool isGood = first.backward.count == 0 && first.repeated.count < report.rows / 2;
    return isOther && isGood ? first.column : "";
}

void addRemark(std::uint64_t count, const std::string& text, std::vector<std::string>& remarks) {
    if (count > 0) remarks.push_back(fmt::format("{} {}", count, text));
}

}  // namespace

TimeReport analyzeTime(Recording& recording, const TimeSources& sources, Progress& progress) {
    std::vector<CounterAnalysis> counters(sources.counters.begin(), sources.counters.end());
    std::optional<StampAnalysis> stamps;
    if (sources.time) stamps.emplace(*sources.time);
    TimeReport report;
    report.path = recording.getName();
    report.nominal = sources.nominal;
    report.rows = readRows(recording, counters, stamps, progress);
    std::transform(counters.begin(), counters.end(), std::back_inserter(report.counters),
                   [](const CounterAnalysis& counter) { return counter.report(); });
    if (stamps) {
        stamps->refine(recording);
        report.stamps = stamps->report(sources.nominal, findTrusted(report));
        report.stamps->gaps = findGaps(recording, stamps->findUnit(sources.nominal), *report.stamps,
                                       sources.gapFactor);
    }
    report.rest = findRest(recording);
    return report;
}

std::vector<std::string> listRemarks(const TimeReport& report) {
    std::vector<std::string> remarks;
    for (const CounterReport& counter : report.counters) {
        addRemark(counter.lost, "lost by " + counter.column, remarks);
        addRemark(counter.backward.count, "backward in " + counter.column, remarks);
        addRemark(counter.repeated.count, "repeated in " + counter.column, remarks);
    }
    if (!report.stamps) return remarks;
    addRemark(report.stamps->gaps.count, "gap(s)", remarks);
    addRemark(report.stamps->backward.count, "backward stamp(s)", remarks);
    addRemark(report.stamps->repeated.count, "repeated stamp(s)", remarks);
    addRemark(report.stamps->notFinite.count, "stamp(s) that are no number", remarks);
    return remarks;
}

}  // namespace SensorFileTool
