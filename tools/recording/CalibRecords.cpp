#include "tools/recording/CalibRecords.hpp"

#include "sensorfile/CalibData.hpp"
#include "sensorfile/Kivra2Layout.hpp"

#include <fmt/format.h>

namespace SensorFileTool {

namespace Kivra2 = SensorFile::Kivra2;
using SensorFile::SensorFileConfig;

namespace {

Eigen::MatrixXd toDoubles(const SensorFileConfig::CalibDataBase& record) {
    using Doubles = SensorFileConfig::CalibData<Eigen::MatrixXd>;
    using Integers = SensorFileConfig::CalibData<Eigen::MatrixXi>;
    if (const auto* doubles = dynamic_cast<const Doubles*>(&record)) return doubles->getMatrix();
    // Files hold no others.
    return dynamic_cast<const Integers&>(record).getMatrix().cast<double>();
}

}  // namespace

std::vector<CalibRecord> listRecords(const SensorFileConfig& config) {
    std::vector<CalibRecord> records;
    for (std::size_t i = 0; i < config.getCalibCount(); ++i) {
        const SensorFileConfig::CalibDataBase& record = config.getCalibData(i);
        records.push_back({record.getName(), record.typeName(), toDoubles(record)});
    }
    return records;
}

std::vector<CalibRecord> listRecords(const SensorFile::Kivra2Calib& calib) {
    const std::string type = "double";
    return {
        {Kivra2::kAccGain, type, calib.accGain}, {Kivra2::kAccOffset, type, calib.accOffset},
        {Kivra2::kMagGain, type, calib.magGain}, {Kivra2::kMagOffset, type, calib.magOffset},
        {Kivra2::kGyrGain, type, calib.gyrGain}, {Kivra2::kGyrOffset, type, calib.gyrOffset},
    };
}

void addRecord(SensorFileConfig& config, const CalibRecord& record) {
    if (record.type == "int32")
        config.addCalibData(record.name, Eigen::MatrixXi(record.matrix.cast<int>()));
    else
        config.addCalibData(record.name, record.matrix);
}

std::string describeDate(const SensorFile::Kivra2Calib::Date& date) {
    constexpr int kFirstYear = 2000;
    return fmt::format("{:04}-{:02}-{:02}T{:02}:{:02}:{:02}Z", date.year + kFirstYear, date.month,
                       date.day, date.hour, date.minute, date.second);
}

}  // namespace SensorFileTool
