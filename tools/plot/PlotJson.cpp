#include "tools/common/Json.hpp"
#include "tools/plot/PlotPage.hpp"

#include <algorithm>
#include <cmath>
#include <iterator>
#include <limits>
#include <ostream>

#include <Poco/DateTimeFormatter.h>
#include <fmt/format.h>

namespace SensorFileTool {

namespace {

constexpr const char* kSchema = "sensorfile-plot-1";
constexpr int kMinDigits = 7;  // what a float holds
constexpr int kMaxDigits = 17;

/// A browser looks for the end of a script before it looks at JSON.
std::string dump(const Json& json) {
    std::string text;
    for (const char letter : jsonLine(json)) {
        if (letter == '<')
            text += "\\u003c";
        else
            text += letter;
    }
    return text;
}

Json axisToJson(const PlotScan& scan) {
    const PlotAxis& axis = scan.axis;
    return {{"column", axis.time ? Json(axis.time->name) : Json()},
            {"unit", axis.isInSeconds ? "s" : "row"},
            {"origin", jsonNumber(axis.origin)},
            {"step", jsonNumber(axis.step)}};
}

Json gapsToJson(const PlotScan& scan) {
    Json marked = Json::array();
    for (const PlotGap& gap : scan.gaps)
        marked.push_back({{"row", jsonInteger(gap.row)},
                          {"start", jsonNumber(gap.start)},
                          {"end", jsonNumber(gap.end)},
                          {"lost", jsonInteger(gap.lost)}});
    return {{"complete", scan.areGapsComplete},
            {"lost", jsonInteger(scan.lost)},
            {"counter", scan.counter.empty() ? Json() : Json(scan.counter)},
            {"marked", marked}};
}

Json panelsToJson(const Plot& plot) {
    Json panels = Json::array();
    for (const PlotPanel& panel : plot.panels) {
        Json columns = Json::array();
        for (const std::size_t column : panel.columns) {
            const auto place = std::find(plot.columns.begin(), plot.columns.end(), column);
            columns.push_back({{"name", plot.config->getColumn(column).getName()},
                               {"values", place - plot.columns.begin()}});
        }
        panels.push_back({{"title", panel.title}, {"columns", columns}});
    }
    return panels;
}

Json headToJson(const Plot& plot) {
    const PlotScan& scan = plot.scan;
    const auto& created = plot.config->getCreationTime();
    return {{"schema", kSchema},
            {"title", plot.title},
            {"file", plot.fileName},
            {"created", Poco::DateTimeFormatter::format(created, "%Y-%m-%dT%H:%M:%SZ")},
            {"frequency_hz", jsonNumber(plot.config->getSampleFrequency())},
            {"calibrated", plot.isCalibrated},
            {"rows", jsonInteger(scan.rows)},
            {"axis", axisToJson(scan)},
            {"notes", scan.notes},
            {"gaps", gapsToJson(scan)},
            {"panels", panelsToJson(plot)}};
}

/// Digits behind the point that tell a hundredth of a step.
int decimalsOf(double step) {
    constexpr int kMost = 12;
    constexpr int kWithoutStep = 6;
    constexpr int kBeyondStep = 2;
    if (!(step > 0.0)) return kWithoutStep;
    return std::clamp(static_cast<int>(std::ceil(-std::log10(step))) + kBeyondStep, 0, kMost);
}

/// Digits that tell a millionth of the range of values.
int digitsOf(const std::vector<double>& values) {
    double low = std::numeric_limits<double>::infinity();
    double high = -low;
    for (const double value : values) {
        if (std::isnan(value)) continue;
        low = std::min(low, value);
        high = std::max(high, value);
    }
    if (!(low < high)) return kMaxDigits;
    const double size = std::max(std::abs(low), std::abs(high));
    const double more = std::ceil(std::log10(size) - std::log10(high - low));
    return std::clamp(kMinDigits + static_cast<int>(more), kMinDigits, kMaxDigits);
}

void appendValue(std::string& text, double value, int digits) {
    constexpr double kLongestInteger = 1e15;
    auto out = std::back_inserter(text);
    if (std::isnan(value))
        text += "null";
    else if (std::abs(value) < kLongestInteger && value == std::trunc(value))
        fmt::format_to(out, "{}", static_cast<std::int64_t>(value));
    else
        fmt::format_to(out, "{:.{}g}", value, digits);
}

void appendPosition(std::string& text, double position, int decimals) {
    fmt::format_to(std::back_inserter(text), "{:.{}f}", position, decimals);
    if (decimals == 0) return;
    text.erase(text.find_last_not_of('0') + 1);
    if (text.back() == '.') text.pop_back();
}

/// Writes a list a number at a time.
template <typename Append>
void writeList(std::ostream& output, const std::vector<double>& values, const Append& append) {
    std::string text = "[";
    for (const double value : values) {
        if (text.size() > 1) text += ',';
        append(text, value);
    }
    text += ']';
    output.write(text.data(), static_cast<std::streamsize>(text.size()));
}

void writeLevel(std::ostream& output, const PlotLevel& level, std::size_t columnCount,
                int decimals) {
    output << R"({"raw":)" << (level.isRaw() ? "true" : "false") << R"(,"positions":)";
    writeList(output, level.getPositions(), [decimals](std::string& text, double position) {
        appendPosition(text, position, decimals);
    });
    output << R"(,"values":[)";
    for (std::size_t i = 0; i < columnCount; ++i) {
        const int digits = digitsOf(level.getValues(i));
        output << (i == 0 ? "" : ",\n");
        writeList(output, level.getValues(i),
                  [digits](std::string& text, double value) { appendValue(text, value, digits); });
    }
    output << "]}";
}

}  // namespace

void writePlotJson(const Plot& plot, std::ostream& output) {
    std::string head = dump(headToJson(plot));
    head.erase(head.rfind('}'));  // it goes on
    output << head << ",\n\"levels\":[";
    const int decimals = decimalsOf(plot.scan.axis.step);
    for (std::size_t i = 0; i < plot.levels.size(); ++i) {
        output << (i == 0 ? "\n" : ",\n");
        writeLevel(output, plot.levels[i], plot.columns.size(), decimals);
    }
    output << "]}";
}

}  // namespace SensorFileTool
