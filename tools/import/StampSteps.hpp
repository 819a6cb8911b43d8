#pragma once

#include "tools/import/CsvNumber.hpp"
#include "tools/import/StepMedian.hpp"
#include "tools/recording/TimeColumn.hpp"

#include <cstdint>
#include <optional>
#include <string_view>

namespace SensorFileTool {

/// The sample frequency by the steps from each time stamp to the next, exact for whole numbers of
/// 64 bits.
class StampSteps {
 public:
    /// @param time  the column's name and unit; its index does not matter
    explicit StampSteps(TimeColumn time) : time_(std::move(time)) {}

    /// The stamp of the next row; what is no finite number makes no step.
    void add(std::string_view cell, const CsvNumberStyle& style);

    /// One over the median step, rounded to nine digits; nothing if that is no positive number.
    /// Guesses the unit, if it is not known.
    /// @param typeCode  of the column
    /// @param usual  the frequency that is guessed at, Hz
    [[nodiscard]] std::optional<double> measure(int typeCode, double usual);
    /// With the unit, once measured.
    [[nodiscard]] const TimeColumn& getColumn() const { return time_; }

 private:
    struct Stamp {
        bool isInteger = false;
        std::uint64_t bits = 0;
        double value = 0.0;
    };

    TimeColumn time_;
    StepMedian steps_;
    std::optional<Stamp> last_;
};

}  // namespace SensorFileTool
