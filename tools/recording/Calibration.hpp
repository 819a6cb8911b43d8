#pragma once

#include "tools/recording/Row.hpp"

#include <array>
#include <cstddef>
#include <string>
#include <vector>

#include <Eigen/Core>

namespace SensorFileTool {

/// Applies a recording's calibration records to its rows: for each sensor that has three columns
/// <P>X, <P>Y, <P>Z and a record <P>Gain (3 x 3) or <P>Offset (1 x 3 or 3 x 1),
///
///     calibrated = Gain * (raw - Offset)
///
/// as columns. <P> is the same word in any case, e.g. ACC; a record that is missing counts as
/// identity or zeros. Calibrated columns are doubles, all others stay as they are.
class Calibration {
 public:
    /// @throws Poco::DataException if there is nothing to apply: no record fits any columns
    explicit Calibration(const SensorFile::SensorFileConfig& raw);

    /// The columns of calibrated rows; everything else is the recording's, without its records,
    /// which nobody is to apply twice.
    [[nodiscard]] const SensorFile::SensorFileConfig& getConfig() const { return config_; }
    /// The prefixes as the columns have them, e.g. "ACC", in the order of the columns.
    [[nodiscard]] std::vector<std::string> getSensors() const;

    /// @param raw  a row of the recording
    /// @return a row of getConfig(), until the next call
    const Row& apply(const Row& raw);
    /// What apply() returned last.
    [[nodiscard]] const Row& last() const { return row_; }

 private:
    struct Sensor {
        std::string prefix;
        std::array<std::size_t, 3> columns{};
        Eigen::Matrix3d gain = Eigen::Matrix3d::Identity();
        Eigen::Vector3d offset = Eigen::Vector3d::Zero();
    };

    void findSensors(const SensorFile::SensorFileConfig& raw);

    std::vector<Sensor> sensors_;
    SensorFile::SensorFileConfig config_;
    Row row_;
};

}  // namespace SensorFileTool
