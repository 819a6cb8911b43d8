#include "tools/statistics/TimeText.hpp"

#include "text/VisibleText.hpp"

#include <fmt/format.h>
#include <fmt/ranges.h>

namespace SensorFileTool {

namespace {

constexpr std::size_t kListedGaps = 5;
constexpr double kPpm = 1e-6;

std::string line(const char* label, const std::string& text) {
    return fmt::format("  {:<13}{}\n", label, Texts::toVisible(text));
}

std::string describe(const Occurrences& occurrences) {
    if (occurrences.count == 0) return "none";
    return fmt::format("{}, first in row {}", occurrences.count, occurrences.firstRow);
}

std::string describeColumn(const StampReport& stamps) {
    return fmt::format("{} in {}{}, from {:.13g} s to {:.13g} s", stamps.column, stamps.unit,
                       stamps.isUnitGuessed ? " (guessed)" : "", stamps.first, stamps.last);
}

std::string describeRates(const StampReport& stamps) {
    if (!stamps.rate) return "none: the last stamp is not behind the first";
    std::string text = fmt::format("{:.6g} Hz", *stamps.rate);
    if (stamps.medianRate)
        text += fmt::format(", {:.4g} Hz by the median step", *stamps.medianRate);
    return text;
}

std::string describeDrift(const StampReport& stamps) {
    if (!stamps.drift) return "";
    return line("drift", fmt::format("{:+.1f} ppm against nominal, by least squares over {}",
                                     *stamps.drift / kPpm,
                                     stamps.driftBy.empty() ? "the rows" : stamps.driftBy));
}

std::string describeSteps(const StampReport& stamps) {
    std::string text;
    for (std::size_t i = 0; i < kStepShares.size(); ++i)
        text += fmt::format("{}{} {}", i == 0 ? "" : ", ", kStepShares[i].label,
                            describeDuration(stamps.percentiles[i]));
    return text;
}

std::string describeGaps(const GapReport& gaps) {
    if (gaps.threshold == 0.0) return line("gaps", "unknown: the median step is not above 0");
    const std::string limit =
        fmt::format("longer than {} ({} medians)", describeDuration(gaps.threshold), gaps.factor);
    if (gaps.count == 0) return line("gaps", "none " + limit);
    std::string text = line(
        "gaps", fmt::format("{} {}, about {:.0f} row(s) missing", gaps.count, limit, gaps.missing));
    text += line("", fmt::format("longest {} before row {}, at {:.7g} s",
                                 describeDuration(gaps.longest->length, 5), gaps.longest->row,
                                 gaps.longest->at));
    if (gaps.count == 1) return text;
    for (std::size_t i = 0; i < gaps.first.size() && i < kListedGaps; ++i)
        text += line("", fmt::format("{} before row {}, at {:.7g} s",
                                     describeDuration(gaps.first[i].length, 5), gaps.first[i].row,
                                     gaps.first[i].at));
    if (gaps.count > kListedGaps)
        text += line("", fmt::format("and {} more", gaps.count - kListedGaps));
    return text;
}

std::string describeStamps(const StampReport& stamps) {
    std::string text = line("time", describeColumn(stamps));
    if (stamps.notFinite.count > 0) text += line("no numbers", describe(stamps.notFinite));
    if (stamps.steps == 0) return text;
    text += line("measured", describeRates(stamps)) + describeDrift(stamps) +
            line("steps", describeSteps(stamps)) +
            line("jitter",
                 fmt::format("{} from the median to the 1 % or 99 % step, standard "
                             "deviation {}",
                             describeDuration(stamps.jitter), describeDuration(stamps.deviation))) +
            describeGaps(stamps.gaps) + line("repeated", describe(stamps.repeated));
    std::string backward = describe(stamps.backward);
    if (stamps.backward.count > 0)
        backward += fmt::format(", by {} at most", describeDuration(stamps.largestBackward));
    return text + line("backward", backward);
}

std::string describeCounter(const CounterReport& counter) {
    std::string text = counter.column + ": ";
    if (counter.lost == 0)
        text += "no row lost";
    else
        text += fmt::format("{} row(s) lost ({}) in {} place(s), first before row {}", counter.lost,
                            describeShare(counter.lossRatio), counter.jumps.count,
                            counter.jumps.firstRow);
    text += fmt::format(", {} wrap(s)", counter.wraps);
    if (counter.repeated.count > 0) text += "; repeated " + describe(counter.repeated);
    if (counter.backward.count > 0) text += "; backward " + describe(counter.backward);
    return line("counter", text);
}

std::string describeVerdict(const TimeReport& report, const std::vector<Violation>& violations) {
    const std::vector<std::string> remarks = listRemarks(report);
    std::string text = remarks.empty() ? "steady" : fmt::format("{}", fmt::join(remarks, ", "));
    if (report.rows < 2) text = "too few rows to tell";
    if (!violations.empty()) text += fmt::format("; beyond {} limit(s)", violations.size());
    return line("verdict", text);
}

}  // namespace

std::string timeToText(const TimeReport& report, const std::vector<Violation>& violations) {
    std::string text = Texts::toVisible(report.path) + '\n' +
                       line("rows", fmt::format("{}", report.rows)) +
                       line("nominal", fmt::format("{} Hz", report.nominal));
    if (report.stamps) text += describeStamps(*report.stamps);
    for (const CounterReport& counter : report.counters)
        text += describeCounter(counter);
    return text + describeVerdict(report, violations);
}

}  // namespace SensorFileTool
