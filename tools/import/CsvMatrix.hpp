#pragma once

#include <string>

#include <Eigen/Core>

namespace SensorFileTool {

/// Reads a CSV file of numbers alone as a matrix, a row of the matrix in each line. Separators are
/// found as detectDialect() does.
/// @throws Poco::FileException (or one derived) if it cannot be read
/// @throws Poco::DataFormatException naming file, line and column, if it holds something else,
///         nothing, or more than 255 rows or columns
[[nodiscard]] Eigen::MatrixXd readCsvMatrix(const std::string& path);

}  // namespace SensorFileTool
