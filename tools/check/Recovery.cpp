#include "tools/check/Recovery.hpp"

#include "tools/check/RecoveryWriter.hpp"

#include <Poco/Exception.h>
#include <fmt/format.h>

namespace SensorFileTool {

namespace {

/// The first defect of the form that is worse than a note; empty if there is none.
std::string firstDamage(const CheckReport& report) {
    for (const Defect& defect : report.defects.getKept()) {
        const DefectKind& kind = kindOf(defect.code);
        if (kind.isStructure && kind.severity != Severity::kNote)
            return fmt::format("{} at offset {}: {}", kind.name, defect.place.offset,
                               defect.message);
    }
    return "";
}

void requireContent(const CheckReport& report) {
    const bool hasContent = report.map.config.isCalibOnly()
                                ? report.map.calibEnd != SectionMap::kNowhere
                                : report.map.hasRows();
    if (hasContent) return;
    throw Poco::DataException(
        fmt::format("{}: nothing can be recovered: {}", report.name, firstDamage(report)));
}

bool isWhole(const CheckReport& report, ZeroRows zeroRows) {
    const bool hasZeros = report.zeroTail.rowCount > 0 && zeroRows != ZeroRows::kKeep &&
                          (report.zeroTail.isProven || zeroRows == ZeroRows::kDrop);
    return report.defects.countStructure() == 0 && !hasZeros;
}

CheckReport checkOutput(const Console& console, const std::string& outPath,
                        const std::string& outName, const Recovery& recovery,
                        CheckOptions options) {
    options.encoding = recovery.before.map.isBinary;
    CheckReport report = checkFile(console, InputFile(outPath), options);
    report.name = outName;
    if (report.defects.countStructure() == 0) return report;
    throw Poco::DataException(fmt::format("{}: no whole file can be made of it: {}",
                                          recovery.before.name, firstDamage(report)));
}

}  // namespace

std::int64_t Recovery::countDroppedRows() const {
    std::int64_t rows = 0;
    for (const Dropped& one : dropped)
        rows += one.rows;
    return rows;
}

std::int64_t Recovery::countDroppedBytes() const {
    std::int64_t bytes = 0;
    for (const Dropped& one : dropped)
        bytes += one.bytes;
    return bytes;
}

Recovery recoverFile(const Console& console, const InputFile& input, const std::string& outPath,
                     const std::string& outName, const RecoverOptions& options) {
    Recovery recovery(checkFile(console, input, options.check));
    requireContent(recovery.before);
    recovery.isWhole = isWhole(recovery.before, options.zeroRows);
    RecoveryWriter writer(input.getPath(), outPath, recovery);
    if (recovery.isWhole) {
        recovery.rowsKept = recovery.before.rows;
        writer.copy();
    } else {
        writer.writeSections();
        if (recovery.before.map.config.isCalibOnly()) {
            // There are no rows.
        } else if (recovery.before.map.isBinary) {
            writer.writeBinaryRows(options.zeroRows);
        } else {
            writer.writeTextRows();
        }
    }
    writer.finish();
    recovery.after = checkOutput(console, outPath, outName, recovery, options.check);
    return recovery;
}

}  // namespace SensorFileTool
