#include "tools/statistics/Percentiles.hpp"

#include <algorithm>
#include <bit>
#include <cmath>
#include <limits>

namespace SensorFileTool {

namespace {

// Layout of the bits of a double.
static_assert(std::numeric_limits<double>::is_iec559);
constexpr int kMantissaBits = 52;
constexpr int kExponentBias = 1023;

}  // namespace

void Bucket::add(double value) {
    if (count++ == 0) {
        least = value;
        greatest = value;
    }
    least = std::min(least, value);
    greatest = std::max(greatest, value);
}

double Bucket::at(std::uint64_t rank) const {
    if (count < 2) return least;
    return least +
           (greatest - least) * (static_cast<double>(rank) / static_cast<double>(count - 1));
}

void Percentiles::add(double value) {
    ++count_;
    const double magnitude = std::abs(value);
    const auto bits = std::bit_cast<std::uint64_t>(magnitude);
    const int exponent = static_cast<int>(bits >> kMantissaBits) - kExponentBias;
    if (exponent < kLowest) return;
    const bool isPositive = value > 0.0;
    ++(isPositive ? positiveCount_ : negativeCount_);
    const int octave = std::min(exponent, kHighest - 1) - kLowest;
    std::unique_ptr<Octave>& buckets =
        (isPositive ? positive_ : negative_)[static_cast<std::size_t>(octave)];
    if (!buckets) buckets = std::make_unique<Octave>();
    (*buckets)[(bits >> (kMantissaBits - kBucketBits)) % kBuckets].add(magnitude);
}

double Percentiles::getPercentile(double share) const {
    return percentileOf(share, count_, [this](std::uint64_t rank) {
        const Place place = findPlace(rank);
        return place.bucket.at(rank - place.before);
    });
}

Percentiles::Place Percentiles::findPlace(std::uint64_t rank) const {
    const std::uint64_t firstPositive = count_ - positiveCount_;
    if (rank < negativeCount_) {
        std::uint64_t inBucket = negativeCount_ - 1 - rank;
        const Bucket& mirror = *find(negative_, inBucket);
        const std::uint64_t behind = mirror.count - 1 - inBucket;  // in the bucket, before the rank
        return {{mirror.count, -mirror.greatest, -mirror.least}, rank - behind};
    }
    if (rank < firstPositive) return {{firstPositive - negativeCount_, 0.0, 0.0}, negativeCount_};
    std::uint64_t inBucket = rank - firstPositive;
    const Bucket& bucket = *find(positive_, inBucket);
    return {bucket, rank - inBucket};
}

/// @param rank  less than the octaves' count; in the bucket afterwards
const Bucket* Percentiles::find(const Octaves& octaves, std::uint64_t& rank) {
    for (const std::unique_ptr<Octave>& octave : octaves) {
        if (!octave) continue;
        for (const Bucket& bucket : *octave) {
            if (rank < bucket.count) return &bucket;
            rank -= bucket.count;
        }
    }
    return nullptr;
}

}  // namespace SensorFileTool
