#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <vector>

namespace SensorFileTool {

/// The Allan deviation at one averaging time.
struct AllanPoint {
    std::uint64_t samples = 0;  ///< m, averaged
    double tau = 0.0;           ///< s
    double deviation = 0.0;
    std::uint64_t terms = 0;  ///< of the sum
    /// One standard deviation of the estimate, in proportion to it: 1 / sqrt(2 (N / m - 1)).
    double error = 0.0;
};

/// The Allan deviation of samples at a steady rate that come one by one, at averages of
/// m = 1, 2, 4, 8 ... samples. With the sums S(k) of the first k of N samples,
///
///     sigma^2(m) = sum over k of (S(k + 2m) - 2 S(k + m) + S(k))^2 / (2 m^2 n)
///
/// where n is the number of terms: the overlapping estimator (W. J. Riley, Handbook of Frequency
/// Stability Analysis, NIST Special Publication 1065, 2008; IEEE Std 952-1997, Annex C, which gives
/// the error, too). Up to m = 256, k goes over all of 0 to N - 2m. Beyond, it goes in steps of
/// m / 256: clusters overlap by 255/256 instead of all but one sample, which makes no difference to
/// the estimate but lets it do with 1024 sums for each m.
class AllanDeviation {
 public:
    /// @param value  must be finite; best near 0, since sums of all values are kept
    void add(double value);

    [[nodiscard]] std::uint64_t getCount() const { return count_; }
    /// All m with two clusters at least.
    /// @param rate  samples per second
    [[nodiscard]] std::vector<AllanPoint> getPoints(double rate) const;

 private:
    static constexpr int kFullBits = 8;  // of the largest m without steps
    static constexpr std::size_t kRingSize = std::size_t{4} << kFullBits;
    static constexpr std::size_t kRingMask = kRingSize - 1;

    struct Total {
        double squares = 0.0;
        std::uint64_t terms = 0;
    };
    /// The last sums in steps of some number of samples. S(0) = 0 is there from the start.
    struct Level {
        std::array<double, kRingSize> sums{};
        std::uint64_t last = 0;  ///< index of the last one, from 0

        void push(double sum) { sums[++last & kRingMask] = sum; }
        void addTerm(std::uint64_t lag, Total& total) const;
    };

    std::vector<Level> levels_{1};                                   ///< in steps of 1, 2, 4 ...
    std::vector<Total> totals_ = std::vector<Total>(kFullBits + 1);  ///< of m = 1, 2, 4 ...
    double sum_ = 0.0;
    std::uint64_t count_ = 0;
};

}  // namespace SensorFileTool
