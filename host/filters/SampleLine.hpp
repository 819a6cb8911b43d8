#pragma once

#include "framework/Export.hpp"
#include "framework/TimeStampedData.hpp"

#include <string>
#include <string_view>

#include <Eigen/Core>

namespace Quoril::Core {

/// The text as a JSON string, with its quotes. Bytes that are no UTF-8 become U+FFFD.
[[nodiscard]] QUORIL_CORE_API std::string toJsonString(std::string_view text);

/// Appends a sample as one line of JSON:
///
///     {"pin":"input#1","time":0.5,"rows":2,"cols":1,"values":[1,0.10000000000000001]}
///
/// Values stand column by column. Numbers have up to 17 significant digits, with which every double
/// is found again exactly. JSON knows no other numbers than finite ones, so that the rest stands as
/// the strings "nan", "inf" and "-inf".
/// @param members  JSON members for the line's start, such as "\"pin\":\"input#1\""
QUORIL_CORE_API void appendSampleLine(std::string& text, std::string_view members,
                                      const TimeStampedData<Eigen::MatrixXd>& sample);

}  // namespace Quoril::Core
