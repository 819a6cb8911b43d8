#pragma once

#include "framework/Export.hpp"

#include <string>

#include <Eigen/Core>

namespace Quoril::Core {

/// Reads a matrix row by row: "1 0 0; 0 1 0; 0 0 1". Rows are separated by ';', values by blanks or
/// a comma; one ';' at the end is ignored. A text without values is the 0 x 0 matrix.
/// @throws Poco::DataFormatException that names row and value if a text is no number or rows differ
///         in length
[[nodiscard]] QUORIL_CORE_API Eigen::MatrixXd parseMatrix(const std::string& text);

}  // namespace Quoril::Core
