#pragma once

#include "tools/recording/CounterColumn.hpp"
#include "tools/statistics/TimeReport.hpp"

#include <cstdint>

namespace SensorFileTool {

/// Follows a counter, row by row.
class CounterAnalysis {
 public:
    explicit CounterAnalysis(const CounterColumn& counter) : counter_(counter) {}

    /// @param row  the next one
    /// @param number  of the row, from 0
    void add(const Row& row, std::uint64_t number);

    /// Numbers since the first row, as if the counter did not wrap.
    [[nodiscard]] double getCount() const { return static_cast<double>(sinceFirst_); }
    [[nodiscard]] CounterReport report() const;

 private:
    CounterColumn counter_;
    CounterReport result_;
    std::uint64_t last_ = 0;
    std::uint64_t sinceFirst_ = 0;
    std::uint64_t taken_ = 0;  ///< numbers that came
};

}  // namespace SensorFileTool
