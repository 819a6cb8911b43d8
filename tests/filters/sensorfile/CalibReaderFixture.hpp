#pragma once

#include "filters/sensorfile/FilterCalibSensorFileReader.hpp"
#include "tests/filters/sensorfile/CalibFile.hpp"
#include "tests/support/ExpectThrow.hpp"
#include "tests/support/FilterHarness.hpp"
#include "tests/support/TemporaryFolder.hpp"
#include "tests/support/TestTime.hpp"

#include <string>
#include <vector>

#include <gmock/gmock.h>

/// A filter that loads calibrations, files for it, and words to tell what happens to both.
class CalibReaderFixture : public testing::Test {
 protected:
    using Values = std::vector<std::vector<double>>;

    static constexpr const char* kAuto = "Auto Detect Calibration Coefficients";
    static constexpr const char* kNames = "Manually Set Calibration Coefficients";

    /// Three records: two of doubles and one of integers.
    CalibReaderFixture() {
        config.setCalibOnly(true);
        config.addCalibData("Gain", Support::matrix({{1.5, 2.0}, {3.0, 4.0}}));
        config.addCalibData("Count", Eigen::MatrixXi((Eigen::MatrixXi(1, 2) << 7, -8).finished()));
        config.addCalibData("Offset", Support::column({-0.25}));
    }

    void write(bool binary = true) { Support::writeConfig(file, config, binary); }
    void load() { cal.set("Load File", file); }
    void useNames(const std::string& names) {
        cal.set(kAuto, false);
        cal.set(kNames, names);
    }
    void flush() { cal.trigger("Flush"); }

    Support::TemporaryFolder folder;
    std::string file = folder.file("calib.sf");
    SensorFile::SensorFileConfig config;
    FilterCalibSensorFileReader filter{"loader"};
    Support::FilterHarness cal{filter};
};
