#include "tools/check/RecoverReport.hpp"

#include "text/VisibleText.hpp"
#include "tools/check/CheckReportText.hpp"
#include "tools/common/Json.hpp"

#include <fmt/format.h>

namespace SensorFileTool {

namespace {

constexpr const char* kSchema = "sensorfile-recover-1";

Json jsonSize(std::int64_t value) {
    return jsonInteger(static_cast<std::uint64_t>(value));
}

std::string describe(const Place& place) {
    std::string text = fmt::format("offset {}", place.offset);
    if (place.row != Place::kNoRow) text += fmt::format(", row {}", place.row);
    return text;
}

std::string lineOf(const Dropped& dropped) {
    const std::string rows = dropped.rows > 0 ? fmt::format("{} row(s), ", dropped.rows) : "";
    return fmt::format("  dropped {:<16} {}{} bytes, {}: {}\n", kindOf(dropped.code).name, rows,
                       dropped.bytes, describe(dropped.first), Texts::toVisible(dropped.message));
}

std::string lineOf(const Mended& mended) {
    return fmt::format("  mended  {} ({} time(s), first at {})\n", mended.what, mended.count,
                       describe(mended.first));
}

/// Zeros at the end that may or may not have been recorded.
bool hasDoubtfulZeros(const Recovery& recovery) {
    return recovery.after.zeroTail.rowCount > 0;
}

Json placeToJson(const Place& place) {
    return place.row == Place::kNoRow ? Json(nullptr) : jsonSize(place.row);
}

Json droppedToJson(const Recovery& recovery) {
    Json list = Json::array();
    for (const Dropped& one : recovery.dropped)
        list.push_back({{"code", kindOf(one.code).name},
                        {"rows", jsonSize(one.rows)},
                        {"bytes", jsonSize(one.bytes)},
                        {"first_offset", jsonSize(one.first.offset)},
                        {"first_row", placeToJson(one.first)},
                        {"message", one.message}});
    return list;
}

Json mendedToJson(const Recovery& recovery) {
    Json list = Json::array();
    for (const Mended& one : recovery.mended)
        list.push_back({{"what", one.what},
                        {"count", jsonSize(one.count)},
                        {"first_offset", jsonSize(one.first.offset)},
                        {"first_row", placeToJson(one.first)}});
    return list;
}

}  // namespace

std::string recoveryToText(const Console& console, const Recovery& recovery) {
    std::string text = Texts::toVisible(recovery.before.name) + ": ";
    if (recovery.isWhole) {
        text += "whole, copied as it is\n";
    } else if (recovery.before.kind == "calibration") {
        text += "the calibration is kept\n";
    } else {
        text += fmt::format("{} row(s) kept, {} dropped\n", recovery.rowsKept,
                            recovery.countDroppedRows());
    }
    for (const Dropped& one : recovery.dropped)
        text += lineOf(one);
    for (const Mended& one : recovery.mended)
        text += lineOf(one);
    if (hasDoubtfulZeros(recovery))
        text += fmt::format("  kept    {} row(s) of zeros at the end; --drop-zeros drops them\n",
                            recovery.after.zeroTail.rowCount);
    return text + checkReportToText(console, recovery.after);
}

std::string recoveryToJson(const Recovery& recovery) {
    return jsonLine({{"schema", kSchema},
                     {"input", recovery.before.name},
                     {"output", recovery.after.name},
                     {"kind", recovery.before.kind},
                     {"encoding", recovery.before.encoding},
                     {"whole", recovery.isWhole},
                     {"rows_kept", jsonSize(recovery.rowsKept)},
                     {"rows_dropped", jsonSize(recovery.countDroppedRows())},
                     {"bytes_dropped", jsonSize(recovery.countDroppedBytes())},
                     {"dropped", droppedToJson(recovery)},
                     {"mended", mendedToJson(recovery)},
                     {"zero_rows_at_end", jsonSize(recovery.after.zeroTail.rowCount)},
                     {"left", defectCountsToJson(recovery.after.defects)}});
}

}  // namespace SensorFileTool
