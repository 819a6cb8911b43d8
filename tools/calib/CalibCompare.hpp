#pragma once

#include "tools/recording/CalibSource.hpp"

#include <string>
#include <vector>

namespace SensorFileTool {

/// A record that is not the same in both files.
struct CalibDifference {
    std::string name;
    std::string what;      ///< a sentence
    double largest = 0.0;  ///< difference of two numbers; 0 if the record itself differs
};

struct CalibDifferences {
    std::size_t sameCount = 0;
    std::vector<CalibDifference> records;
};

/// By name: the order does not matter. NaN is equal to NaN.
/// @param tolerance  differences of numbers up to this do not count
[[nodiscard]] CalibDifferences compareCalib(const CalibSource& one, const CalibSource& other,
                                            double tolerance);

[[nodiscard]] std::string differencesToText(const CalibDifferences& differences);
[[nodiscard]] std::string differencesToJson(const CalibDifferences& differences);

}  // namespace SensorFileTool
