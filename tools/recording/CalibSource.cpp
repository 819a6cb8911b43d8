#include "tools/recording/CalibSource.hpp"

#include "sensorfile/Kivra2Layout.hpp"
#include "tools/common/FileKind.hpp"
#include "tools/recording/Recording.hpp"

#include <array>
#include <utility>

#include <Poco/Exception.h>
#include <fmt/format.h>

namespace SensorFileTool {

namespace Kivra2 = SensorFile::Kivra2;
using SensorFile::Kivra2Calib;
using SensorFile::SensorFileConfig;

namespace {

/// Not every date that the bytes can say exists.
Poco::DateTime timeOf(const Kivra2Calib::Date& date) {
    const int year = date.year + SensorFile::kFirstYear;
    if (!Poco::DateTime::isValid(year, date.month, date.day, date.hour, date.minute, date.second))
        return SensorFileConfig::zeroTime();
    return {year, date.month, date.day, date.hour, date.minute, date.second};
}

CalibSource loadKivra2(const InputFile& input) {
    Kivra2Calib calib;
    if (calib.load(input.getPath()) != Kivra2Calib::Extent::kWhole)
        throw Poco::DataException(input.getName() + ": the file is cut");
    return {listRecords(calib), timeOf(calib.date), calib.version, true};
}

using Place = std::pair<const char*, Eigen::MatrixXd Kivra2Calib::*>;
constexpr std::array<Place, 6> kPlaces = {{{Kivra2::kAccGain, &Kivra2Calib::accGain},
                                           {Kivra2::kAccOffset, &Kivra2Calib::accOffset},
                                           {Kivra2::kMagGain, &Kivra2Calib::magGain},
                                           {Kivra2::kMagOffset, &Kivra2Calib::magOffset},
                                           {Kivra2::kGyrGain, &Kivra2Calib::gyrGain},
                                           {Kivra2::kGyrOffset, &Kivra2Calib::gyrOffset}}};

void put(const CalibRecord& record, Kivra2Calib& calib) {
    for (const auto& [name, member] : kPlaces) {
        if (record.name != name) continue;
        Eigen::MatrixXd& matrix = calib.*member;
        if (matrix.rows() != record.matrix.rows() || matrix.cols() != record.matrix.cols())
            throw Poco::DataException(fmt::format(
                "record {} is {} x {}, but a Kivra2 file holds {} x {}", record.name,
                record.matrix.rows(), record.matrix.cols(), matrix.rows(), matrix.cols()));
        matrix = record.matrix;
        return;
    }
    throw Poco::DataException("record " + record.name + " has no place in a Kivra2 file");
}

}  // namespace

const CalibRecord* CalibSource::find(const std::string& name) const {
    for (const CalibRecord& record : records)
        if (record.name == name) return &record;
    return nullptr;
}

void CalibSource::copyTo(SensorFileConfig& config) const {
    config.clearCalibData();
    for (const CalibRecord& record : records)
        addRecord(config, record);
    config.setCalibTime(time);
    config.setCalibFormat(format);
    // Older versions have no names.
    if (SensorFile::isBareCalibVersion(config.getCalibVersion()))
        config.setCalibVersion(SensorFile::kDefaultCalibVersion);
}

Kivra2Calib CalibSource::toKivra2() const {
    if (records.empty()) throw Poco::DataException("there are no calibration records");
    Kivra2Calib calib;
    for (const CalibRecord& record : records)
        put(record, calib);
    calib.date = Kivra2Calib::Date(time);
    calib.version = format;
    return calib;
}

CalibSource loadCalib(InputFile input, const InputOptions& options) {
    if (options.isKivra2Calib(input)) return loadKivra2(input);
    const Recording recording(std::move(input), options.getEncoding());
    const SensorFileConfig& config = recording.getConfig();
    return {listRecords(config), config.getCalibTime(), config.getCalibFormat(),
            recording.isBinary()};
}

}  // namespace SensorFileTool
