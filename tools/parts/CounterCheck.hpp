#pragma once

#include "tools/recording/CounterColumn.hpp"
#include "tools/recording/Row.hpp"

#include <cstdint>
#include <string>
#include <vector>

namespace SensorFileTool {

/// Follows a counter over the rows of one recording after the other.
class CounterCheck {
 public:
    /// A place where it does not go on by one.
    struct Gap {
        std::size_t part = 0;   ///< of the row behind it, from 0
        std::uint64_t row = 0;  ///< in its part, from 0
        CounterColumn::Step step;
    };

    explicit CounterCheck(CounterColumn counter) : counter_(std::move(counter)) {}

    void see(const Row& row, std::size_t part, std::uint64_t rowNumber);

    [[nodiscard]] const CounterColumn& getCounter() const { return counter_; }
    [[nodiscard]] bool isWhole() const { return gapCount_ == 0; }
    /// Rows that are missing in all gaps; repeated and backward steps tell of none.
    [[nodiscard]] std::uint64_t getMissing() const { return missing_; }
    [[nodiscard]] std::uint64_t getGapCount() const { return gapCount_; }
    /// The first ones.
    [[nodiscard]] const std::vector<Gap>& getGaps() const { return gaps_; }

 private:
    CounterColumn counter_;
    bool hasLast_ = false;
    std::uint64_t last_ = 0;
    std::uint64_t missing_ = 0;
    std::uint64_t gapCount_ = 0;
    std::vector<Gap> gaps_;
};

}  // namespace SensorFileTool
