#pragma once

#include "framework/Filter.hpp"
#include "framework/OutputPin.hpp"
#include "sensorfile/SensorFileConfig.hpp"

#include <memory>
#include <string>
#include <vector>

#include <Eigen/Core>

namespace Filters {

using MatrixOutputPin = Quoril::Core::OutputPin<Eigen::MatrixXd>;
using MatrixOutputPins = std::vector<std::unique_ptr<MatrixOutputPin>>;

/// The coefficients of a calibration record as doubles.
/// @throws Poco::DataException "Data type format is not supported!" for elements other than double
///         and int
[[nodiscard]] Eigen::MatrixXd calibMatrix(
    const SensorFile::SensorFileConfig::CalibDataBase& record);

/// One pin for each calibration record of a file, in its order, filled.
/// @param filter  owner of the pins; must outlive them
/// @throws Poco::DataException as calibMatrix
[[nodiscard]] MatrixOutputPins makeCalibPins(Quoril::Core::Filter& filter,
                                             const SensorFile::SensorFileConfig& config);

/// One empty pin for each name, in order; a name that stands there twice makes two pins.
[[nodiscard]] MatrixOutputPins makeNamedPins(Quoril::Core::Filter& filter,
                                             const std::vector<std::string>& names);

/// Whether a file has a calibration record of every name.
[[nodiscard]] bool hasCalibs(const SensorFile::SensorFileConfig& config,
                             const std::vector<std::string>& names);

/// Copies calibration records into the pins made for them: one pin for each name, in order.
/// @throws Poco::DataException if a record is missing, or a pin is missing or has another name
void publishCalibration(const SensorFile::SensorFileConfig& config,
                        const std::vector<std::string>& names, const MatrixOutputPins& pins);

/// @param timeStamp  seconds
void sendAll(const MatrixOutputPins& pins, double timeStamp);

}  // namespace Filters
