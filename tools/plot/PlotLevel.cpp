#include "tools/plot/PlotLevel.hpp"

#include <algorithm>
#include <cmath>
#include <limits>

namespace SensorFileTool {

namespace {

constexpr std::uint64_t kGap = std::numeric_limits<std::uint64_t>::max();
constexpr double kNone = std::numeric_limits<double>::quiet_NaN();
constexpr double kInfinity = std::numeric_limits<double>::infinity();
constexpr std::uint64_t kPointsPerBucket = 2;

}  // namespace

PlotLevel::PlotLevel(std::size_t columnCount, std::uint64_t rowCount, std::uint64_t bucketCount)
    : rowCount_(rowCount),
      bucketCount_(bucketCount),
      isRaw_(rowCount <= kPointsPerBucket * bucketCount),
      values_(columnCount),
      bucket_(columnCount) {
    clearBucket();
}

std::uint64_t PlotLevel::countPoints(std::uint64_t rowCount, std::uint64_t bucketCount) {
    return std::min(rowCount, kPointsPerBucket * bucketCount);
}

void PlotLevel::add(std::uint64_t row, double position, std::span<const double> values) {
    if (isRaw_) {
        push(row, position);
        for (std::size_t i = 0; i < values_.size(); ++i)
            values_[i].push_back(std::isfinite(values[i]) ? values[i] : kNone);
        return;
    }
    if (bucketSize_ > 0 && row >= bucketEnd_) flush();
    if (bucketSize_ == 0) {
        // The last bucket that begins at this row or before.
        const std::uint64_t bucket = ((row + 1) * bucketCount_ - 1) / rowCount_;
        bucketEnd_ = (bucket + 1) * rowCount_ / bucketCount_;
        bucketRow_ = row;
        bucketStart_ = position;
    }
    for (std::size_t i = 0; i < bucket_.size(); ++i) {
        Extremes& extremes = bucket_[i];
        const double value = values[i];
        if (!std::isfinite(value)) continue;
        if (value < extremes.min) {
            extremes.min = value;
            extremes.minAt = bucketSize_;
        }
        if (value > extremes.max) {
            extremes.max = value;
            extremes.maxAt = bucketSize_;
        }
    }
    bucketLast_ = position;
    ++bucketSize_;
}

void PlotLevel::addGap(double position) {
    flush();
    const std::uint64_t points = isRaw_ ? 1 : kPointsPerBucket;
    for (std::uint64_t i = 0; i < points; ++i) {
        push(kGap, position);
        for (std::vector<double>& column : values_)
            column.push_back(kNone);
    }
}

PlotLevel PlotLevel::coarsen(std::uint64_t bucketCount) const {
    PlotLevel level(values_.size(), rowCount_, bucketCount);
    std::vector<double> values(values_.size());
    for (std::size_t point = 0; point < rows_.size(); ++point) {
        if (rows_[point] == kGap) {
            level.addGap(positions_[point]);
            if (!isRaw_) ++point;
            continue;
        }
        for (std::size_t i = 0; i < values_.size(); ++i)
            values[i] = values_[i][point];
        level.add(rows_[point], positions_[point], values);
    }
    level.finish();
    return level;
}

void PlotLevel::clearBucket() {
    std::fill(bucket_.begin(), bucket_.end(), Extremes{kInfinity, -kInfinity, 0, 0});
    bucketSize_ = 0;
}

void PlotLevel::flush() {
    if (bucketSize_ == 0) return;
    push(bucketRow_, bucketStart_);
    push(bucketRow_, bucketLast_);
    for (std::size_t i = 0; i < bucket_.size(); ++i) {
        const Extremes& extremes = bucket_[i];
        const bool isEmpty = extremes.min > extremes.max;
        const bool isMinFirst = extremes.minAt <= extremes.maxAt;
        values_[i].push_back(isEmpty ? kNone : isMinFirst ? extremes.min : extremes.max);
        values_[i].push_back(isEmpty ? kNone : isMinFirst ? extremes.max : extremes.min);
    }
    clearBucket();
}

void PlotLevel::push(std::uint64_t row, double position) {
    rows_.push_back(row);
    positions_.push_back(position);
}

}  // namespace SensorFileTool
