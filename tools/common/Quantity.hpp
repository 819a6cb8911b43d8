#pragma once

#include <string>

namespace SensorFileTool {

/// A number with its unit, as the user wrote it for an option.
struct Quantity {
    std::string text;
    double value = 0.0;
};

/// Seconds: "1ms", "0.5 s", "20us", "100ns".
/// @throws UsageException naming the option, as all of these, if that is not what the text says
[[nodiscard]] Quantity parseDuration(const std::string& option, const std::string& text);
/// A ratio: "0.1%" is 0.001, "50ppm" is 0.00005.
[[nodiscard]] Quantity parseRatio(const std::string& option, const std::string& text);
/// A whole number from 0 on, without a unit.
[[nodiscard]] Quantity parseCount(const std::string& option, const std::string& text);

/// "2.509 ms": the unit that needs no zeros, and some digits.
[[nodiscard]] std::string describeDuration(double seconds, int digits = 4);
/// "0.12 %"
[[nodiscard]] std::string describeShare(double share);

}  // namespace SensorFileTool
