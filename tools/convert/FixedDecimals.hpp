#pragma once

#include "sensorfile/TextRowCodec.hpp"

#include <string>

namespace SensorFileTool {

/// Tells which floating point numbers come back from a text file, which has a fixed number of
/// decimals. Many times faster than writing and reading them.
class FixedDecimals {
 public:
    /// @param precision  decimals, as SensorFileConfig::setDoublePrecision() takes them
    explicit FixedDecimals(int precision);

    /// Whether the number reads back as it is. What is no number does, whatever its bits are.
    [[nodiscard]] bool keeps(double value) const;
    [[nodiscard]] bool keeps(float value) const;

    /// As a double or float stands in the text.
    [[nodiscard]] std::string textOf(double value) const;

 private:
    template <typename T>
    [[nodiscard]] bool readsBack(T value) const;

    SensorFile::TextRowCodec codec_;  ///< of a column of doubles
    double power_ = 0.0;              ///< 10^precision; 0 if no double is exactly that
};

}  // namespace SensorFileTool
