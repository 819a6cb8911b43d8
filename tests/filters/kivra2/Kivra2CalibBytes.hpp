#pragma once

#include <cstddef>
#include <sstream>
#include <string>

#include <Eigen/Core>
#include <Poco/BinaryWriter.h>

/// Bytes of a Kivra2 calibration file, put together by a plain big-endian writer.
class Kivra2CalibBytes {
 public:
    static constexpr std::size_t kDateSize = 6;
    static constexpr std::size_t kHeadSize = 8;  ///< date and version
    static constexpr std::size_t kFileSize = 296;

    Kivra2CalibBytes& byte(int value) {
        writer_ << static_cast<char>(static_cast<unsigned char>(value));
        return *this;
    }
    Kivra2CalibBytes& date(int day, int month, int year, int hour, int minute, int second) {
        return byte(day).byte(month).byte(year).byte(hour).byte(minute).byte(second);
    }
    Kivra2CalibBytes& version(int value) {
        writer_ << static_cast<Poco::UInt16>(value);
        return *this;
    }
    /// Column by column.
    Kivra2CalibBytes& matrix(const Eigen::MatrixXd& matrix) {
        for (Eigen::Index c = 0; c < matrix.cols(); ++c)
            for (Eigen::Index r = 0; r < matrix.rows(); ++r)
                writer_ << matrix(r, c);
        return *this;
    }
    Kivra2CalibBytes& defaultGain() { return matrix(Eigen::MatrixXd::Identity(3, 3)); }
    Kivra2CalibBytes& defaultOffset() { return matrix(Eigen::MatrixXd::Zero(1, 3)); }

    [[nodiscard]] std::string text() const { return stream_.str(); }

    /// What stands behind the head when no matrix came.
    static std::string defaultMatrices() {
        Kivra2CalibBytes bytes;
        for (int i = 0; i < 3; ++i)
            bytes.defaultGain().defaultOffset();
        return bytes.text();
    }

 private:
    std::ostringstream stream_;
    Poco::BinaryWriter writer_{stream_, Poco::BinaryWriter::BIG_ENDIAN_BYTE_ORDER};
};
