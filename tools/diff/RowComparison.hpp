#pragma once

#include "tools/common/Progress.hpp"
#include "tools/diff/PartDifference.hpp"
#include "tools/recording/RowRange.hpp"
#include "tools/recording/RowReader.hpp"

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace SensorFileTool {

/// Values of a column that differ.
struct ColumnTally {
    std::string name;
    std::uint64_t different = 0;
    std::uint64_t firstRow = 0;
    double largest = 0.0;  ///< infinity where either value is not finite
    std::uint64_t largestRow = 0;
};

/// The first value that differs, by rows and then by columns.
struct FirstDifference {
    std::uint64_t row = 0;
    ColumnPair column;
    Row a;
    Row b;
};

struct RowDifferences {
    std::uint64_t rowsA = 0;  ///< whole rows, of the range
    std::uint64_t rowsB = 0;
    std::uint64_t compared = 0;
    std::optional<FirstDifference> first;
    std::vector<ColumnTally> columns;  ///< those that both have
};

/// Compares the rows of two recordings, which stand at their first ones.
class RowComparison {
 public:
    /// @param a, b  must outlive this
    RowComparison(Recording& a, Recording& b, const std::vector<ColumnPair>& pairs,
                  const Tolerance& tolerance, const RowRange& range);

    /// @param stopsAtFirst  at the first difference: the counts of rows and values are not whole
    RowDifferences run(Progress& progress, bool stopsAtFirst);

 private:
    void compareRow(std::uint64_t row);
    void tellDifference(std::uint64_t row, std::size_t column, double difference);
    [[nodiscard]] std::uint64_t countRest(Recording& recording, RowReader& rows,
                                          std::uint64_t read) const;

    Recording& a_;
    Recording& b_;
    RowReader rowsA_;
    RowReader rowsB_;
    Tolerance tolerance_;
    RowRange range_;
    std::vector<ColumnPair> pairs_;  ///< as the columns of the result
    RowDifferences result_;
};

}  // namespace SensorFileTool
