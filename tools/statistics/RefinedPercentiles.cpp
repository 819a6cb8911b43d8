#include "tools/statistics/RefinedPercentiles.hpp"

#include <algorithm>

namespace SensorFileTool {

namespace {

constexpr std::size_t kParts = 1024;

std::size_t partOf(const Bucket& bucket, double value) {
    const double share = (value - bucket.least) / (bucket.greatest - bucket.least);
    return std::min(static_cast<std::size_t>(share * static_cast<double>(kParts)), kParts - 1);
}

}  // namespace

RefinedPercentiles::RefinedPercentiles(const Percentiles& coarse, std::span<const double> shares)
    : coarse_(&coarse) {
    // The ranks that are needed.
    for (const double share : shares)
        (void)percentileOf(share, coarse.getCount(), [this](std::uint64_t rank) {
            addWindow(rank);
            return 0.0;
        });
}

void RefinedPercentiles::addWindow(std::uint64_t rank) {
    const Percentiles::Place place = coarse_->findPlace(rank);
    const bool isThere = std::any_of(windows_.begin(), windows_.end(), [&](const Window& window) {
        return window.place.before == place.before;
    });
    if (place.bucket.isExact() || isThere) return;
    windows_.push_back({place, std::vector<Bucket>(kParts)});
}

void RefinedPercentiles::add(double value) {
    for (Window& window : windows_) {
        const Bucket& bucket = window.place.bucket;
        if (value < bucket.least || value > bucket.greatest) continue;
        window.parts[partOf(bucket, value)].add(value);
        return;
    }
}

double RefinedPercentiles::getPercentile(double share) const {
    if (coarse_ == nullptr) return 0.0;
    return percentileOf(share, coarse_->getCount(),
                        [this](std::uint64_t rank) { return valueAt(rank); });
}

double RefinedPercentiles::valueAt(std::uint64_t rank) const {
    const Percentiles::Place place = coarse_->findPlace(rank);
    std::uint64_t left = rank - place.before;
    for (const Window& window : windows_) {
        if (window.place.before != place.before) continue;
        for (const Bucket& part : window.parts) {
            if (left < part.count) return part.at(left);
            left -= part.count;
        }
    }
    return place.bucket.at(rank - place.before);
}

}  // namespace SensorFileTool
