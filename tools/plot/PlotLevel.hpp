#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

namespace SensorFileTool {

/// The values of many rows as few points: of every bucket of rows each column's smallest and
/// largest value, in the order in which they came, so that no spike is lost. Bucket k of n holds
/// the rows from k * rows / n on. A gap ends a bucket and breaks the line. Where the rows are no
/// more than the points of the buckets, there is a point for every row instead.
class PlotLevel {
 public:
    /// @param rowCount  rows that will be added
    /// @param bucketCount  at least 1
    PlotLevel(std::size_t columnCount, std::uint64_t rowCount, std::uint64_t bucketCount);

    /// Values that are not finite are left out.
    /// @param row  counted from 0, in order; those of a bucket may be repeated
    /// @param position  on the horizontal axis
    /// @param values  one per column
    void add(std::uint64_t row, double position, std::span<const double> values);
    /// Between the rows added before and those after.
    void addGap(double position);
    /// After the last row.
    void finish() { flush(); }

    /// The same with fewer buckets; each of them holds whole buckets of this if their number here
    /// is a multiple of theirs, or this has all rows.
    [[nodiscard]] PlotLevel coarsen(std::uint64_t bucketCount) const;

    [[nodiscard]] std::uint64_t getBucketCount() const { return bucketCount_; }
    /// A point for every row, not two for every bucket.
    [[nodiscard]] bool isRaw() const { return isRaw_; }
    /// Of the points; buckets have two, at their first and their last row; so do their gaps.
    [[nodiscard]] const std::vector<double>& getPositions() const { return positions_; }
    /// A value for every point; not a number where there is none.
    [[nodiscard]] const std::vector<double>& getValues(std::size_t column) const {
        return values_[column];
    }

    /// Points of a level without gaps.
    [[nodiscard]] static std::uint64_t countPoints(std::uint64_t rowCount,
                                                   std::uint64_t bucketCount);

 private:
    /// Of a column in the bucket.
    struct Extremes {
        double min;
        double max;
        std::uint64_t minAt;
        std::uint64_t maxAt;
    };

    void clearBucket();
    void flush();
    void push(std::uint64_t row, double position);

    std::uint64_t rowCount_;
    std::uint64_t bucketCount_;
    bool isRaw_;
    std::vector<std::uint64_t> rows_;  ///< of the points; kGap for those of gaps
    std::vector<double> positions_;
    std::vector<std::vector<double>> values_;

    std::vector<Extremes> bucket_;
    std::uint64_t bucketEnd_ = 0;   ///< the row behind the bucket
    std::uint64_t bucketRow_ = 0;   ///< its first row
    std::uint64_t bucketSize_ = 0;  ///< additions so far
    double bucketStart_ = 0.0;
    double bucketLast_ = 0.0;
};

}  // namespace SensorFileTool
