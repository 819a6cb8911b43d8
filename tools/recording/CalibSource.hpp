#pragma once

#include "sensorfile/Kivra2Calib.hpp"
#include "tools/common/InputOptions.hpp"
#include "tools/recording/CalibRecords.hpp"

#include <cstdint>
#include <string>
#include <vector>

#include <Poco/DateTime.h>

namespace SensorFileTool {

/// Calibration records, wherever they come from: a recording, a file of calibrations, or the file
/// of a Kivra2 unit.
struct CalibSource {
    std::vector<CalibRecord> records;
    Poco::DateTime time;  ///< SensorFileConfig::zeroTime() if there is no such date
    std::uint16_t format = SensorFile::kDefaultCalibFormat;  ///< the version of a Kivra2 file
    bool isBinary = true;

    /// @return nullptr if there is no record of exactly this name
    [[nodiscard]] const CalibRecord* find(const std::string& name) const;

    /// Takes records, date and format over into a configuration, whose own ones go.
    void copyTo(SensorFile::SensorFileConfig& config) const;

    /// For the file of a Kivra2 unit: sensors without records get identity and zeros.
    /// @throws Poco::DataException naming what has no place there: a record of another name or
    ///         shape, or no record at all
    [[nodiscard]] SensorFile::Kivra2Calib toKivra2() const;
};

/// @throws Poco::Exception as Recording; Poco::DataException naming a Kivra2 file that is cut
[[nodiscard]] CalibSource loadCalib(InputFile input, const InputOptions& options);

}  // namespace SensorFileTool
