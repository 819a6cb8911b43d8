#pragma once

#include <cstddef>
#include <cstdint>
#include <iosfwd>
#include <string>

#include <Eigen/Core>
#include <Poco/DateTime.h>

namespace SensorFile {

/// The calibration of one Kivra2 inertial unit, as its own small file holds it:
///
///     offset 0  day, month, year - 2000, hour, minute, second (UTC), one byte each
///     offset 6  version, unsigned 16-bit
///     offset 8  gain and offset of the accelerometer, the magnetometer, the gyroscope
///
/// All numbers are big-endian; matrices are doubles, column by column. With gains of 3 x 3 and
/// offsets of 1 x 3 a file has 296 bytes.
struct Kivra2Calib {
    static constexpr std::size_t kFileSize = 296;

    /// The first six bytes as they are: not every such date exists.
    struct Date {
        std::uint8_t day = 0;
        std::uint8_t month = 0;
        std::uint8_t year = 0;  ///< minus 2000
        std::uint8_t hour = 0;
        std::uint8_t minute = 0;
        std::uint8_t second = 0;

        Date() = default;
        /// The year is (year + 48) modulo 256: right from 2000 to 2255, 255 in 1999.
        explicit Date(const Poco::DateTime& time);
    };

    /// How far a file could be read.
    enum class Extent { kNothing, kDate, kVersion, kWhole };

    Date date;
    std::uint16_t version = 0;
    Eigen::MatrixXd accGain = Eigen::MatrixXd::Identity(3, 3);
    Eigen::MatrixXd accOffset = Eigen::MatrixXd::Zero(1, 3);
    Eigen::MatrixXd magGain = Eigen::MatrixXd::Identity(3, 3);
    Eigen::MatrixXd magOffset = Eigen::MatrixXd::Zero(1, 3);
    Eigen::MatrixXd gyrGain = Eigen::MatrixXd::Identity(3, 3);
    Eigen::MatrixXd gyrOffset = Eigen::MatrixXd::Zero(1, 3);

    /// Writes the matrices with the shapes that they have: others than 3 x 3 and 1 x 3 move the
    /// fields behind them, and no reader can tell.
    /// @throws Poco::FileException (or one derived) naming the path, also if the disk is full
    void save(const std::string& path) const;

    /// Reads date, version and matrices, as many elements as each matrix has now. What was read
    /// whole is kept; the matrices only all together.
    /// @throws Poco::FileException (or one derived) naming the path, if it cannot be opened
    Extent load(const std::string& path);

 private:
    void write(std::ostream& stream) const;
    Extent read(std::istream& stream);
};

}  // namespace SensorFile
