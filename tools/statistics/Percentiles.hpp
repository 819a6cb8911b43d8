#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <memory>

namespace SensorFileTool {

/// How many numbers of a narrow range there were.
struct Bucket {
    std::uint64_t count = 0;
    double least = 0.0;
    double greatest = 0.0;

    void add(double value);
    /// The number at a rank, counted from 0, as if they were spread evenly.
    [[nodiscard]] double at(std::uint64_t rank) const;
    /// Whether at() is exact.
    [[nodiscard]] bool isExact() const { return count <= 2 || least == greatest; }
};

/// The percentile between two neighbours in the proportion of its position, as NumPy does.
/// @param share  0 (the least number) to 1 (the greatest)
/// @param count  of the numbers
/// @param valueAt  gives the number at a rank, counted from 0 in ascending order
/// @return 0 without numbers
template <typename ValueAt>
[[nodiscard]] double percentileOf(double share, std::uint64_t count, const ValueAt& valueAt) {
    if (count == 0) return 0.0;
    const double position = share * static_cast<double>(count - 1);
    const auto rank = static_cast<std::uint64_t>(position);
    const double value = valueAt(rank);
    const double rest = position - static_cast<double>(rank);
    if (rest == 0.0 || rank + 1 >= count) return value;
    return value + rest * (valueAt(rank + 1) - value);
}

/// The distribution of any number of numbers in little memory: they are counted in buckets whose
/// width is 1/1024 of their lower end, from 2^-200 to 2^200 of either sign. A percentile is apart
/// from the exact one by 0.1 % of itself at most; it is exact if a bucket holds the same number
/// over and over. Smaller numbers count as 0. See RefinedPercentiles for more digits.
class Percentiles {
 public:
    /// A bucket and the numbers before it.
    struct Place {
        Bucket bucket;
        std::uint64_t before = 0;
    };

    /// @param value  must be finite
    void add(double value);

    [[nodiscard]] std::uint64_t getCount() const { return count_; }
    [[nodiscard]] double getPercentile(double share) const;
    /// The bucket that holds a rank, counted from 0 in ascending order.
    [[nodiscard]] Place findPlace(std::uint64_t rank) const;

 private:
    static constexpr int kLowest = -200;  // exponents of 2
    static constexpr int kHighest = 200;
    static constexpr int kBucketBits = 10;
    static constexpr std::size_t kBuckets = std::size_t{1} << kBucketBits;

    /// The numbers between two powers of 2, made when the first one comes.
    using Octave = std::array<Bucket, kBuckets>;
    using Octaves = std::array<std::unique_ptr<Octave>, kHighest - kLowest>;

    [[nodiscard]] static const Bucket* find(const Octaves& octaves, std::uint64_t& rank);

    Octaves positive_;
    Octaves negative_;  ///< by their magnitudes
    std::uint64_t positiveCount_ = 0;
    std::uint64_t negativeCount_ = 0;
    std::uint64_t count_ = 0;
};

}  // namespace SensorFileTool
