#pragma once

#include "sensorfile/ColumnType.hpp"

#include <locale>
#include <sstream>
#include <type_traits>

#include <Poco/Exception.h>

namespace SensorFile {

template <typename Matrix>
int CalibData<Matrix>::typeCode() const {
    if constexpr (std::is_same_v<typename Matrix::Scalar, double>) {
        return kDouble;
    } else if constexpr (std::is_same_v<typename Matrix::Scalar, int>) {
        return kInt32;
    } else {
        throw Poco::DataException("Data format is not supported!");
    }
}

template <typename Matrix>
std::string CalibData<Matrix>::typeName() const {
    return columnTypeName(typeCode());
}

template <typename Matrix>
std::uint64_t CalibData<Matrix>::size() const {
    const std::uint64_t elementWidth = columnTypeSize(typeCode());
    const std::uint64_t elementCount = std::uint64_t{rows()} * cols();
    return getName().size() + 3 + elementCount * elementWidth;
}

template <typename Matrix>
std::string CalibData<Matrix>::toText() const {
    std::ostringstream text;
    text.imbue(std::locale::classic());
    text.precision(15);
    for (Eigen::Index row = 0; row < matrix_.rows(); ++row) {
        for (Eigen::Index col = 0; col < matrix_.cols(); ++col) {
            text << (col > 0 ? " " : "") << matrix_(row, col);
        }
        if (row + 1 < matrix_.rows()) text << '\n';
    }
    return text.str();
}

}  // namespace SensorFile
