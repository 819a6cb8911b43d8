#include "tools/common/JsonValue.hpp"
#include "tools/statistics/StatsReport.hpp"

#include <optional>

namespace SensorFileTool {

namespace {

Json orNull(const std::optional<double>& value) {
    return value ? jsonNumber(*value) : Json(nullptr);
}

Json columnOf(const ColumnSummary& column, const StatsReport& report) {
    const bool hasNumbers = column.count > 0;
    const auto ifNumbers = [&](const Json& json) { return hasNumbers ? json : Json(nullptr); };
    const auto ifRows = [&](const Row& row) {
        return report.rows > 0 ? jsonValue(row, column.index) : Json(nullptr);
    };
    return {{"name", column.name},
            {"type", column.type},
            {"count", jsonInteger(column.count)},
            {"not_finite", jsonInteger(column.notFinite)},
            {"min", ifNumbers(jsonValue(report.least, column.index))},
            {"max", ifNumbers(jsonValue(report.greatest, column.index))},
            {"mean", ifNumbers(jsonNumber(column.mean))},
            {"deviation", ifNumbers(jsonNumber(column.deviation))},
            {"first", ifRows(report.first)},
            {"last", ifRows(report.last)},
            {"at_min", jsonInteger(column.atLeast)},
            {"at_max", jsonInteger(column.atGreatest)},
            {"clipped_low", jsonInteger(column.clippedLow)},
            {"clipped_high", jsonInteger(column.clippedHigh)},
            {"repeated", jsonInteger(column.repeated)},
            {"longest_run", jsonInteger(column.longestRun)},
            {"longest_run_row", ifNumbers(jsonInteger(column.longestRunRow))}};
}

Json pointsOf(const std::vector<AllanPoint>& points) {
    Json list = Json::array();
    for (const AllanPoint& point : points)
        list.push_back({{"samples", jsonInteger(point.samples)},
                        {"tau_s", jsonNumber(point.tau)},
                        {"deviation", jsonNumber(point.deviation)},
                        {"relative_error", jsonNumber(point.error)},
                        {"terms", jsonInteger(point.terms)}});
    return list;
}

Json allanOf(const AllanReport& allan, double rate) {
    const AllanNoise& noise = allan.noise;
    return {{"column", allan.column},
            {"rate_hz", jsonNumber(rate)},
            {"left_out", jsonInteger(allan.leftOut)},
            {"points", pointsOf(allan.points)},
            {"white_noise", orNull(noise.white)},
            {"bias_instability", orNull(noise.instability)},
            {"bias_instability_tau_s",
             noise.instability ? jsonNumber(noise.instabilityTau) : Json(nullptr)},
            {"random_walk", orNull(noise.walk)}};
}

}  // namespace

std::string statsToJson(const StatsReport& report) {
    Json columns = Json::array();
    for (const ColumnSummary& column : report.columns)
        columns.push_back(columnOf(column, report));
    Json allan = Json::array();
    for (const AllanReport& one : report.allan)
        allan.push_back(allanOf(one, report.rate));
    return jsonLine({{"schema", "sensorfile-stats-1"},
                     {"path", report.path},
                     {"first_row", jsonInteger(report.firstRow)},
                     {"rows", jsonInteger(report.rows)},
                     {"calibrated", report.isCalibrated},
                     {"columns", columns},
                     {"allan", allan}});
}

}  // namespace SensorFileTool
