#include "tools/check/CheckReportText.hpp"

#include "text/VisibleText.hpp"
#include "tools/common/Json.hpp"

#include <fmt/format.h>

namespace SensorFileTool {

namespace {

constexpr const char* kSchema = "sensorfile-check-1";

void appendCount(std::string& text, std::uint64_t count, const char* word) {
    if (count == 0) return;
    text += fmt::format("{}{} {}{}", text.empty() ? "" : ", ", count, word, count == 1 ? "" : "s");
}

bool isClean(const CheckReport& report) {
    return report.defects.count(Severity::kError) == 0 &&
           report.defects.count(Severity::kWarning) == 0;
}

std::string sizeOf(const CheckReport& report) {
    if (report.kind != "recording") return "a calibration";
    return fmt::format("{} row{}", report.rows, report.rows == 1 ? "" : "s");
}

std::string lineOf(const Console& console, const Defect& defect) {
    const DefectKind& kind = kindOf(defect.code);
    const std::string severity = fmt::format("{:<7}", severityName(kind.severity));
    std::string place = fmt::format("offset {}", defect.place.offset);
    if (defect.place.row != Place::kNoRow) place += fmt::format(", row {}", defect.place.row);
    if (!defect.column.empty()) place += ", " + defect.column;
    return fmt::format(
        "  {} {:<16} {}: {}\n",
        kind.severity == Severity::kError ? paint(console, Color::kBad, severity) : severity,
        kind.name, Texts::toVisible(place), Texts::toVisible(defect.message));
}

/// What is not shown.
std::string restOf(const DefectList& defects) {
    std::string text;
    for (const DefectCode code : defects.listCodes()) {
        const std::uint64_t kept = defects.countKept(code);
        if (kept < defects.count(code))
            text += fmt::format("  {}: {} in all, the first {} are shown\n", kindOf(code).name,
                                defects.count(code), kept);
    }
    return text;
}

Json listOf(const DefectList& defects) {
    Json list = Json::array();
    for (const Defect& defect : defects.getKept()) {
        Json one{{"code", kindOf(defect.code).name},
                 {"severity", severityName(kindOf(defect.code).severity)},
                 {"offset", defect.place.offset},
                 {"row", nullptr},
                 {"column", nullptr},
                 {"message", defect.message}};
        if (defect.place.row != Place::kNoRow) one["row"] = defect.place.row;
        if (!defect.column.empty()) one["column"] = defect.column;
        list.push_back(one);
    }
    return list;
}

}  // namespace

Json defectCountsToJson(const DefectList& defects) {
    Json list = Json::array();
    for (const DefectCode code : defects.listCodes())
        list.push_back({{"code", kindOf(code).name},
                        {"severity", severityName(kindOf(code).severity)},
                        {"kind", kindOf(code).isStructure ? "structure" : "content"},
                        {"count", jsonInteger(defects.count(code))},
                        {"listed", defects.countKept(code)}});
    return list;
}

std::string countDefects(const DefectList& defects) {
    std::string text;
    appendCount(text, defects.count(Severity::kError), "error");
    appendCount(text, defects.count(Severity::kWarning), "warning");
    appendCount(text, defects.count(Severity::kNote), "note");
    return text;
}

std::string checkReportToText(const Console& console, const CheckReport& report) {
    const std::string counts = countDefects(report.defects);
    const std::string verdict = isClean(report) ? paint(console, Color::kGood, "clean") : counts;
    std::string text =
        fmt::format("{}: {}, {}{}\n", Texts::toVisible(report.name), verdict, sizeOf(report),
                    isClean(report) && !counts.empty() ? ", " + counts : "");
    for (const Defect& defect : report.defects.getKept())
        text += lineOf(console, defect);
    return text + restOf(report.defects);
}

std::string checkReportToJson(const CheckReport& report) {
    Json json{{"schema", kSchema},
              {"path", report.name},
              {"kind", report.kind},
              {"encoding", report.encoding},
              {"byte_order", nullptr},
              {"size_bytes", jsonInteger(static_cast<std::uint64_t>(report.size))},
              {"rows", jsonInteger(static_cast<std::uint64_t>(report.rows))},
              {"clean", isClean(report)},
              {"errors", jsonInteger(report.defects.count(Severity::kError))},
              {"warnings", jsonInteger(report.defects.count(Severity::kWarning))},
              {"notes", jsonInteger(report.defects.count(Severity::kNote))},
              {"counts", defectCountsToJson(report.defects)},
              {"defects", listOf(report.defects)}};
    if (!report.byteOrder.empty()) json["byte_order"] = report.byteOrder;
    return jsonLine(json);
}

}  // namespace SensorFileTool
