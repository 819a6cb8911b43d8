#pragma once

#include "sensorfile/SensorFileConfig.hpp"
#include "tools/recording/Row.hpp"
#include "tools/statistics/RunningMoments.hpp"

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

namespace SensorFileTool {

/// What the values of a column are like. Values that are not finite only count as such.
struct ColumnSummary {
    std::size_t index = 0;
    std::string name;
    std::string type;
    std::uint64_t count = 0;  ///< of the finite values
    std::uint64_t notFinite = 0;
    double mean = 0.0;
    double deviation = 0.0;        ///< of a sample
    std::uint64_t atLeast = 0;     ///< values that equal the least one
    std::uint64_t atGreatest = 0;  ///< and the greatest one
    /// Integers: values at the type's limits, 0 of unsigned ones left out. Floating point numbers:
    /// values that equal the least (or the greatest) of the column in runs of three and more.
    std::uint64_t clippedLow = 0;
    std::uint64_t clippedHigh = 0;
    std::uint64_t repeated = 0;       ///< values that equal the one before
    std::uint64_t longestRun = 0;     ///< of equal values
    std::uint64_t longestRunRow = 0;  ///< where it begins
};

/// Sums up columns, row by row.
class ColumnStatistics {
 public:
    /// @param columns  indexes of the columns of the rows
    ColumnStatistics(const SensorFile::SensorFileConfig& config,
                     const std::vector<std::size_t>& columns);

    void add(const Row& row, std::uint64_t number);

    /// In the order of the columns that were given.
    [[nodiscard]] std::vector<ColumnSummary> summarize() const;
    /// Rows of the least and the greatest finite values of each column; 0 where there is none.
    [[nodiscard]] Row getLeast() const { return getEnds(&Column::leastBits, &Column::least); }
    [[nodiscard]] Row getGreatest() const {
        return getEnds(&Column::greatestBits, &Column::greatest);
    }

 private:
    struct Column {
        std::size_t index = 0;
        int typeCode = 0;
        bool isWide = false;
        bool isSigned = false;
        double least = 0.0;
        double greatest = 0.0;
        std::uint64_t leastBits = 0;
        std::uint64_t greatestBits = 0;
        double last = 0.0;
        std::uint64_t lastBits = 0;
        std::uint64_t run = 0;  ///< of equal values up to the last one; 0: it was not finite
        std::uint64_t runRow = 0;
        double origin = 0.0;
        std::uint64_t originBits = 0;
        RunningMoments moments;  ///< of the distances from the origin
        ColumnSummary summary;
    };

    [[nodiscard]] Row getEnds(std::uint64_t Column::*bits, double Column::*value) const;
    static void addNumber(Column& column, double value, std::uint64_t number);
    static void addWide(Column& column, double value, std::uint64_t bits, std::uint64_t number);
    static void addRun(Column& column, bool isEqual, std::uint64_t number);
    static void countClipped(Column& column, double value);
    static void judgeClipped(const Column& column, ColumnSummary& summary);

    std::vector<Column> columns_;
    SensorFile::SensorFileConfig config_;
};

/// How far an integer of 64 bits is from another one, rounded once.
[[nodiscard]] double distanceBetween(std::uint64_t from, std::uint64_t to, bool isSigned);

}  // namespace SensorFileTool
