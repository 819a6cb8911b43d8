#pragma once

#include <cstdint>

#include <Eigen/Core>

namespace SensorFile {

class SensorFileConfig;

/// Makes records of the bare values of older calibration sections: for each of up to three sensors
/// nine gains ("Gain1", 3 x 3) and three offsets ("Offset1", 1 x 3). Further values are ignored.
/// Gains lie column by column, in version 0x8101 row by row; there the first sensor's gains alone
/// are stored halved.
class BareCalibValues {
 public:
    /// `config` takes the records and must outlive this.
    BareCalibValues(SensorFileConfig& config, std::uint16_t version);

    /// Takes the next value; the last one of a record appends the record.
    void add(double value);

 private:
    SensorFileConfig& config_;
    const bool isCoded_;
    std::uint64_t count_ = 0;
    Eigen::MatrixXd gain_{3, 3};
    Eigen::MatrixXd offset_{1, 3};
};

}  // namespace SensorFile
