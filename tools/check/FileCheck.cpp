#include "tools/check/FileCheck.hpp"

#include "tools/check/CalibCheck.hpp"
#include "tools/check/SectionScan.hpp"
#include "tools/check/TextRowCheck.hpp"
#include "tools/common/ErrorText.hpp"
#include "tools/common/Progress.hpp"

#include <Poco/Exception.h>
#include <Poco/File.h>

namespace SensorFileTool {

namespace {

void checkRows(const Console& console, const InputFile& input, const CheckOptions& options,
               CheckReport& report) {
    const SensorFile::SensorFileConfig& config = report.map.config;
    const ColumnRoles roles{chooseCounterColumns(config, options.counter),
                            chooseTimeColumn(config, options.time, options.timeUnit)};
    auto rules = makeColumnRules(config, report.map.isBinary, roles, report.defects);
    Progress progress(console, input.getName(), static_cast<std::uint64_t>(report.size));
    if (report.map.isBinary) {
        BinaryRowCheck rows(input.getPath(), report.map, rules, report.defects);
        rows.run([&](std::int64_t done) { progress.showNow(static_cast<std::uint64_t>(done)); });
        report.rows = rows.getRowCount();
        report.zeroTail = rows.getZeroTail();
    } else {
        TextRowCheck rows(input.getPath(), report.map, rules, report.defects);
        rows.run([&](std::int64_t done) { progress.show(static_cast<std::uint64_t>(done)); });
        report.rows = rows.getRowCount();
    }
}

/// Whatever else may be wrong: readers have the last word.
void tryReader(const InputFile& input, CheckReport& report) {
    if (report.defects.count(Severity::kError) != 0) return;
    try {
        SensorFile::SensorFileReader().open(input.getPath(), report.map.isBinary);
    } catch (const Poco::DataException& error) {
        report.defects.add(DefectCode::kUnreadable, {}, "",
                           [&] { return input.withName(describeError(error)); });
    }
}

SectionMap scanSections(const InputFile& input, bool binary, DefectList& defects) {
    try {
        return SectionScan(input.getPath(), binary, defects).scan();
    } catch (const Poco::DataException& error) {
        throw Poco::DataException(input.getName() + ": " + error.message());
    }
}

void checkSensorFile(const Console& console, const InputFile& input, const CheckOptions& options,
                     CheckReport& report) {
    const bool binary = findEncoding(input, options.encoding);
    report.map = scanSections(input, binary, report.defects);
    report.kind = report.map.config.isCalibOnly() ? "calibration" : "recording";
    report.encoding = binary ? "binary" : "text";
    if (binary) report.byteOrder = report.map.config.isBigEndian() ? "big" : "little";
    tryReader(input, report);
    if (report.map.hasRows()) checkRows(console, input, options, report);
}

}  // namespace

CheckReport checkFile(const Console& console, const InputFile& input, const CheckOptions& options) {
    CheckReport report(options.maxPerCode);
    report.name = input.getName();
    report.size = static_cast<std::int64_t>(Poco::File(input.getPath()).getSize());
    if (options.isKivra2Calib) {
        report.kind = "kivra2-calibration";
        report.encoding = "binary";
        report.byteOrder = "big";
        checkKivra2Calib(input.getPath(), report.defects);
    } else {
        checkSensorFile(console, input, options, report);
    }
    report.defects.sort();
    return report;
}

}  // namespace SensorFileTool
