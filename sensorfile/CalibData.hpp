#pragma once

#include "sensorfile/CalibDataBase.hpp"

#include <memory>
#include <string>
#include <utility>

#include <Eigen/Core>

namespace SensorFile {

/// A record of doubles (Eigen::MatrixXd) or ints (Eigen::MatrixXi). Matrices of other elements can
/// be held, but the file format has no place for them.
template <typename Matrix>
class CalibData : public CalibDataBase {
 public:
    CalibData(std::string name, Matrix matrix)
        : CalibDataBase(std::move(name)), matrix_(std::move(matrix)) {}

    /// @throws Poco::DataException "Data format is not supported!" if the elements are neither
    ///         double nor int; the same for typeCode() and typeName()
    [[nodiscard]] std::uint64_t size() const override;
    [[nodiscard]] int typeCode() const override;
    [[nodiscard]] std::string typeName() const override;
    [[nodiscard]] std::string toText() const override;
    [[nodiscard]] std::unique_ptr<CalibDataBase> clone() const override {
        return std::make_unique<CalibData>(*this);
    }
    [[nodiscard]] std::size_t rows() const override {
        return static_cast<std::size_t>(matrix_.rows());
    }
    [[nodiscard]] std::size_t cols() const override {
        return static_cast<std::size_t>(matrix_.cols());
    }

    [[nodiscard]] const Matrix& getMatrix() const { return matrix_; }

 private:
    Matrix matrix_;
};

}  // namespace SensorFile

#include "sensorfile/CalibData.inl"
