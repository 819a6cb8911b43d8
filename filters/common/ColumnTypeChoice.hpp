#pragma once

#include <string>
#include <vector>

namespace Filters {

/// The column types that users choose from, by position: "UCHAR" is 0.
[[nodiscard]] const std::vector<std::string>& columnTypeChoices();

/// The type code of a file's column for a position in columnTypeChoices().
/// @throws Poco::DataException "Column type is not compatible with SensorFile format" if the
///         position is past the last one
[[nodiscard]] int columnTypeCode(unsigned position);

/// Types of a time-stamp column, by position: "DOUBLE", "UINT32".
[[nodiscard]] const std::vector<std::string>& timeStampTypeChoices();
/// @throws Poco::DataException as columnTypeCode
[[nodiscard]] int timeStampTypeCode(unsigned position);

/// Types of a calibration record, by position: "DOUBLE", "INT32".
[[nodiscard]] const std::vector<std::string>& calibTypeChoices();

/// Raised when a chosen type has no place in a file.
inline constexpr const char* kBadColumnType =
    "Column type is not compatible with SensorFile format";

}  // namespace Filters
