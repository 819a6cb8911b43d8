#include "sensorfile/ColumnType.hpp"
#include "text/VisibleText.hpp"
#include "tools/common/TextTable.hpp"
#include "tools/recording/ValueText.hpp"
#include "tools/statistics/StatsReport.hpp"

#include <fmt/format.h>

namespace SensorFileTool {

namespace {

constexpr std::size_t kIndent = 2;

std::string line(const std::string& label, const std::string& text) {
    return fmt::format("  {:<13}{}\n", label, Texts::toVisible(text));
}

/// Integers with all their digits, others with those that mean something to a reader.
std::string describeValue(const Row& row, std::size_t column) {
    if (row.getTypeCode(column) != SensorFile::kDouble) return valueText(row, column);
    const double value = row.getValue(column);
    return value == value ? fmt::format("{:.10g}", value) : "nan";
}

std::string valuesTable(const StatsReport& report) {
    TextTable table({"column", "min", "max", "mean", "std deviation", "first", "last"}, kIndent);
    for (const ColumnSummary& column : report.columns) {
        std::vector<std::string> cells(table.width(), "-");
        cells.front() = column.name;
        if (column.count > 0) {
            cells[1] = describeValue(report.least, column.index);
            cells[2] = describeValue(report.greatest, column.index);
            cells[3] = fmt::format("{:.10g}", column.mean);
            cells[4] = fmt::format("{:.6g}", column.deviation);
        }
        if (report.rows > 0) {
            cells[5] = describeValue(report.first, column.index);
            cells[6] = describeValue(report.last, column.index);
        }
        table.addRow(cells);
    }
    return table.toText();
}

std::string qualityTable(const StatsReport& report) {
    TextTable table({"column", "type", "not finite", "clipped low", "clipped high", "repeated",
                     "longest run", "at row"},
                    kIndent);
    for (const ColumnSummary& column : report.columns)
        table.addRow({column.name, column.type, fmt::format("{}", column.notFinite),
                      fmt::format("{}", column.clippedLow), fmt::format("{}", column.clippedHigh),
                      fmt::format("{}", column.repeated), fmt::format("{}", column.longestRun),
                      column.longestRun > 0 ? fmt::format("{}", column.longestRunRow) : "-"});
    return table.toText();
}

std::string describeNoise(const AllanNoise& noise) {
    std::string text;
    if (noise.white)
        text += line("white noise",
                     fmt::format("{:.5g} sqrt(s), by the slope -1/2 (angle random walk N of a "
                                 "gyroscope)",
                                 *noise.white));
    if (noise.instability)
        text += line("bias", fmt::format("{:.5g}, the least deviation ({:.6g} s) / 0.664 (bias "
                                         "instability B)",
                                         *noise.instability, noise.instabilityTau));
    if (noise.walk)
        text += line(
            "random walk",
            fmt::format("{:.5g} / sqrt(s), by the slope +1/2 (rate random walk K)", *noise.walk));
    return text;
}

std::string describeAllan(const AllanReport& allan, double rate) {
    std::string text = fmt::format("\nAllan deviation of {} at {} Hz\n", allan.column, rate);
    if (allan.leftOut > 0)
        text += line("left out", fmt::format("{} value(s) that are not finite", allan.leftOut));
    if (allan.points.empty()) return text + line("points", "none: there are too few values");
    text += describeNoise(allan.noise) + '\n';
    TextTable table({"samples", "tau (s)", "deviation", "error", "terms"}, kIndent);
    for (const AllanPoint& point : allan.points)
        table.addRow({fmt::format("{}", point.samples), fmt::format("{:.6g}", point.tau),
                      fmt::format("{:.5g}", point.deviation),
                      fmt::format("{:.2g} %", 100.0 * point.error),
                      fmt::format("{}", point.terms)});
    return text + table.toText();
}

}  // namespace

std::string statsToText(const StatsReport& report) {
    std::string rows = fmt::format("{}", report.rows);
    if (report.firstRow > 0) rows += fmt::format(", from row {} on", report.firstRow);
    std::string text = Texts::toVisible(report.path) + '\n' + line("rows", rows);
    if (!report.columns.empty()) text += '\n' + valuesTable(report) + '\n' + qualityTable(report);
    for (const AllanReport& allan : report.allan)
        text += describeAllan(allan, report.rate);
    return text;
}

}  // namespace SensorFileTool
