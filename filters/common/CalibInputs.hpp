#pragma once

#include "filters/common/InputPinList.hpp"
#include "sensorfile/SensorFileConfig.hpp"

#include <cstddef>
#include <string>
#include <vector>

#include <Eigen/Core>

namespace Filters {

/// Takes all samples that a pin holds and copies the newest one's matrix; false, and the matrix
/// untouched, when there is none. Never waits.
[[nodiscard]] bool takeNewest(MatrixInputPin& pin, Eigen::MatrixXd& newest);

/// Adds a calibration record to a configuration.
/// @param typePosition  in calibTypeChoices(): 0 keeps the doubles, 1 truncates them toward zero
/// @throws Poco::DataException badTypeText for any other position
void addCalibRecord(SensorFile::SensorFileConfig& config, const std::string& name,
                    unsigned typePosition, const Eigen::MatrixXd& matrix, const char* badTypeText);

/// Calibration pins "calibInput#" 1, 2, ... and the last matrix that each one received, which
/// outlives recordings.
class CalibInputs {
 public:
    explicit CalibInputs(Quoril::Core::Filter& filter);

    /// Adds or removes pins at the end; matrices of removed pins are forgotten, and the
    /// descriptions must be noted anew.
    void resize(std::size_t count);
    /// Notes names and types of the records, for addRecords(). Reads properties.
    void noteDescriptions();
    /// Adds a record for each connected pin that has a matrix, new or remembered; empty matrices
    /// are skipped. Reads no property.
    /// @throws Poco::DataException badTypeText for a type that calibration records cannot have
    void addRecords(SensorFile::SensorFileConfig& config, const char* badTypeText);

    [[nodiscard]] InputPinList& getPins() { return pins_; }
    [[nodiscard]] const InputPinList& getPins() const { return pins_; }

 private:
    struct Description {
        std::string name;
        unsigned typePosition;
    };

    const Eigen::MatrixXd& newestMatrix(std::size_t index);

    InputPinList pins_;
    std::vector<Description> descriptions_;
    std::vector<Eigen::MatrixXd> remembered_;  ///< by pin; empty until the pin received one
};

}  // namespace Filters
