#pragma once

#include <optional>
#include <string>

namespace SensorFileTool {

/// The type code of a column type as a user writes it: in upper case, as "INT16", "DOUBLE",
/// "UCHAR", or as text headers have it, as "int16", "d", "unsigned char". Nothing if it is none.
[[nodiscard]] std::optional<int> findColumnType(const std::string& name);

/// The name in upper case.
[[nodiscard]] std::string upperTypeName(int typeCode);

/// All names in upper case, for messages.
[[nodiscard]] std::string listColumnTypes();

}  // namespace SensorFileTool
