#pragma once

#include "sensorfile/Kivra2Calib.hpp"
#include "sensorfile/SensorFileConfig.hpp"

#include <string>
#include <vector>

#include <Eigen/Core>

namespace SensorFileTool {

/// A calibration record as its file's readers see it.
struct CalibRecord {
    std::string name;
    std::string type;        ///< "double" or "int32"
    Eigen::MatrixXd matrix;  ///< 32-bit integers are doubles, exactly
};

[[nodiscard]] std::vector<CalibRecord> listRecords(const SensorFile::SensorFileConfig& config);

/// The six matrices under the names of a Kivra2 recording's records.
[[nodiscard]] std::vector<CalibRecord> listRecords(const SensorFile::Kivra2Calib& calib);

/// The record as a file keeps it: integers if its type says so.
void addRecord(SensorFile::SensorFileConfig& config, const CalibRecord& record);

/// The date as its bytes say it, "2017-03-05T14:07:09Z".
[[nodiscard]] std::string describeDate(const SensorFile::Kivra2Calib::Date& date);

}  // namespace SensorFileTool
