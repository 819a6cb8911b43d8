#include "tools/common/Json.hpp"
#include "tools/statistics/TimeText.hpp"

namespace SensorFileTool {

namespace {

constexpr double kPpm = 1e-6;

Json orNull(const std::optional<double>& value) {
    return value ? jsonNumber(*value) : Json(nullptr);
}

Json occurrencesOf(const Occurrences& occurrences) {
    return {
        {"count", jsonInteger(occurrences.count)},
        {"first_row", occurrences.count > 0 ? jsonInteger(occurrences.firstRow) : Json(nullptr)}};
}

Json gapOf(const Gap& gap) {
    return {{"row", jsonInteger(gap.row)},
            {"at_s", jsonNumber(gap.at)},
            {"length_s", jsonNumber(gap.length)}};
}

Json gapsOf(const GapReport& gaps) {
    Json list = Json::array();
    for (const Gap& gap : gaps.first)
        list.push_back(gapOf(gap));
    return {{"factor", gaps.factor},
            {"threshold_s", jsonNumber(gaps.threshold)},
            {"count", jsonInteger(gaps.count)},
            {"missing_rows", jsonNumber(gaps.missing)},
            {"longest", gaps.longest ? gapOf(*gaps.longest) : Json(nullptr)},
            {"first", list}};
}

Json stepsOf(const StampReport& stamps) {
    Json steps{{"count", jsonInteger(stamps.steps)}};
    for (std::size_t i = 0; i < kStepShares.size(); ++i)
        steps[kStepShares[i].key] = jsonNumber(stamps.percentiles[i]);
    steps["deviation_s"] = jsonNumber(stamps.deviation);
    return steps;
}

Json stampsOf(const StampReport& stamps) {
    Json backward = occurrencesOf(stamps.backward);
    backward["largest_s"] = jsonNumber(stamps.largestBackward);
    return {{"column", stamps.column},
            {"unit", stamps.unit},
            {"unit_guessed", stamps.isUnitGuessed},
            {"first_s", jsonNumber(stamps.first)},
            {"last_s", jsonNumber(stamps.last)},
            {"rate_hz", orNull(stamps.rate)},
            {"median_rate_hz", orNull(stamps.medianRate)},
            {"drift_ppm", stamps.drift ? jsonNumber(*stamps.drift / kPpm) : Json(nullptr)},
            {"drift_by", stamps.driftBy.empty() ? Json(nullptr) : Json(stamps.driftBy)},
            {"steps", stepsOf(stamps)},
            {"jitter_s", jsonNumber(stamps.jitter)},
            {"gaps", gapsOf(stamps.gaps)},
            {"backward", backward},
            {"repeated", occurrencesOf(stamps.repeated)},
            {"not_finite", occurrencesOf(stamps.notFinite)}};
}

Json countersOf(const std::vector<CounterReport>& counters) {
    Json list = Json::array();
    for (const CounterReport& counter : counters)
        list.push_back({{"column", counter.column},
                        {"lost", jsonInteger(counter.lost)},
                        {"loss_ratio", jsonNumber(counter.lossRatio)},
                        {"jumps", occurrencesOf(counter.jumps)},
                        {"wraps", jsonInteger(counter.wraps)},
                        {"backward", occurrencesOf(counter.backward)},
                        {"repeated", occurrencesOf(counter.repeated)}});
    return list;
}

Json violationsOf(const std::vector<Violation>& violations) {
    Json list = Json::array();
    for (const Violation& one : violations)
        list.push_back({{"limit", one.limit}, {"allowed", one.allowed}, {"found", one.found}});
    return list;
}

}  // namespace

std::string timeToJson(const TimeReport& report, const std::vector<Violation>& violations) {
    return jsonLine({{"schema", "sensorfile-time-1"},
                     {"path", report.path},
                     {"rows", jsonInteger(report.rows)},
                     {"nominal_hz", jsonNumber(report.nominal)},
                     {"time", report.stamps ? stampsOf(*report.stamps) : Json(nullptr)},
                     {"counters", countersOf(report.counters)},
                     {"remarks", listRemarks(report)},
                     {"violations", violationsOf(violations)}});
}

}  // namespace SensorFileTool
