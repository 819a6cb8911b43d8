#pragma once

#include "sensorfile/SensorFileConfig.hpp"
#include "tools/check/DefectList.hpp"

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace SensorFileTool {

/// Finds columns that lost digits when they were written with a fixed number of decimals.
///
/// The number of decimals is the largest one that any value of the file has, for trailing zeros are
/// not written. A column whose largest value keeps three digits or fewer has lost some
/// - if it uses all these decimals, and they are as many as writers use unless told otherwise, or
///   more: fewer may be all that the values have; or
/// - if "-0" is there, which is how a small negative number is written.
/// Columns with exponents were not written so.
class FixedDigits {
 public:
    explicit FixedDigits(std::size_t columnCount) : columns_(columnCount) {}

    /// @param text  a finite number of a column of floats or doubles
    void take(std::size_t column, std::string_view text, double value, const Place& place);
    void tell(const SensorFile::SensorFileConfig& config, DefectList& defects) const;

 private:
    struct Column {
        std::size_t decimals = 0;
        double largest = 0.0;
        bool hasExponent = false;
        bool hasNegativeZero = false;
        bool isUsed = false;
        Place firstLost;  ///< the first negative zero, or the first value but 0
        std::uint64_t zeros = 0;
        std::uint64_t count = 0;
    };

    [[nodiscard]] bool isLost(const Column& column, std::size_t decimals) const;

    std::vector<Column> columns_;
};

}  // namespace SensorFileTool
