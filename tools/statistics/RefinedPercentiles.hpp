#pragma once

#include "tools/statistics/Percentiles.hpp"

#include <cstdint>
#include <span>
#include <vector>

namespace SensorFileTool {

/// A few percentiles with more digits, when the same numbers come once more: the buckets of
/// Percentiles that hold them are divided into 1024 parts each, so that a percentile is apart from
/// the exact one by a millionth of itself at most.
class RefinedPercentiles {
 public:
    RefinedPercentiles() = default;
    /// @param coarse  all the numbers; must outlive this
    /// @param shares  those that are asked for
    RefinedPercentiles(const Percentiles& coarse, std::span<const double> shares);

    /// Whether the numbers need not come again.
    [[nodiscard]] bool isExact() const { return windows_.empty(); }
    void add(double value);
    /// @param share  one of the shares
    [[nodiscard]] double getPercentile(double share) const;

 private:
    struct Window {
        Percentiles::Place place;
        std::vector<Bucket> parts;
    };

    void addWindow(std::uint64_t rank);
    [[nodiscard]] double valueAt(std::uint64_t rank) const;

    const Percentiles* coarse_ = nullptr;
    std::vector<Window> windows_;
};

}  // namespace SensorFileTool
