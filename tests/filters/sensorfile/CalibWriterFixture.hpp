#pragma once

#include "filters/sensorfile/FilterCalibSensorFileWriter.hpp"
#include "tests/filters/sensorfile/CalibFile.hpp"
#include "tests/support/ExpectThrow.hpp"
#include "tests/support/FilterHarness.hpp"
#include "tests/support/TemporaryFolder.hpp"
#include "tests/support/TestTime.hpp"

#include <string>
#include <vector>

#include <Poco/File.h>
#include <gmock/gmock.h>

/// A filter that saves calibrations, a folder for its files, and words to tell what happens.
class CalibWriterFixture : public testing::Test {
 protected:
    /// Makes a pin for each name; the type of all is DOUBLE.
    void makePins(const std::vector<std::string>& names) {
        cal.set("Calib Pins Number", static_cast<int>(names.size()));
        for (std::size_t i = 0; i < names.size(); ++i)
            cal.set("CalibColNames#" + std::to_string(i + 1), names[i]);
    }

    void save() {
        cal.set("File Name", file);
        cal.trigger("Save");
    }

    /// What the last save wrote.
    [[nodiscard]] SensorFile::SensorFileConfig saved() const {
        return Support::readConfig(file, cal.get<bool>("Binary"));
    }
    [[nodiscard]] std::vector<std::string> savedNames() const {
        return Support::calibNames(saved());
    }
    [[nodiscard]] Eigen::MatrixXd savedValue(std::size_t record) const {
        return Support::calibValue(saved(), record);
    }

    Support::TemporaryFolder folder;
    std::string file = folder.file("calib.sf");
    FilterCalibSensorFileWriter filter{"saver"};
    Support::FilterHarness cal{filter};
};
