#include "tools/check/CalibCheck.hpp"

#include <Eigen/LU>
#include <Poco/DateTime.h>
#include <Poco/File.h>
#include <Poco/String.h>
#include <fmt/format.h>

namespace SensorFileTool {

using SensorFile::Kivra2Calib;

namespace {

constexpr std::int64_t kFirstRecord = 8;
constexpr int kFirstYear = 2000;

bool isGain(const CalibRecord& record) {
    return Poco::toLower(record.name).find("gain") != std::string::npos &&
           record.matrix.rows() == record.matrix.cols() && record.matrix.rows() > 0;
}

void checkDate(const Kivra2Calib::Date& date, DefectList& defects) {
    if (Poco::DateTime::isValid(date.year + kFirstYear, date.month, date.day, date.hour,
                                date.minute, date.second))
        return;
    defects.add(DefectCode::kImpossibleDate, {0}, "",
                [&] { return "no such date: " + describeDate(date); });
}

}  // namespace

void checkRecord(const CalibRecord& record, std::int64_t offset, DefectList& defects) {
    if (!record.matrix.allFinite()) {
        defects.add(DefectCode::kCalibrationValue, {offset}, "", [&] {
            return fmt::format("record '{}' holds values that are not finite", record.name);
        });
        return;
    }
    if (isGain(record) && !Eigen::FullPivLU<Eigen::MatrixXd>(record.matrix).isInvertible())
        defects.add(DefectCode::kSingularGain, {offset}, "",
                    [&] { return fmt::format("the gain '{}' cannot be inverted", record.name); });
}

void checkKivra2Calib(const std::string& path, DefectList& defects) {
    const auto size = static_cast<std::int64_t>(Poco::File(path).getSize());
    const auto wanted = std::int64_t{Kivra2Calib::kFileSize};
    Kivra2Calib calib;
    const Kivra2Calib::Extent extent = calib.load(path);
    if (size < wanted)
        defects.add(DefectCode::kCutSection, {size}, "", [&] {
            return fmt::format("the file ends here: a Kivra2 calibration has {} bytes", wanted);
        });
    if (size > wanted)
        defects.add(DefectCode::kJunkBehindCalibration, {wanted}, "", [&] {
            return fmt::format("{} byte(s) follow the calibration", size - wanted);
        });
    if (extent == Kivra2Calib::Extent::kNothing) return;
    checkDate(calib.date, defects);
    if (extent != Kivra2Calib::Extent::kWhole) return;
    std::int64_t offset = kFirstRecord;
    for (const CalibRecord& record : listRecords(calib)) {
        checkRecord(record, offset, defects);
        offset += record.matrix.size() * std::int64_t{sizeof(double)};
    }
}

}  // namespace SensorFileTool
