#include "sensorfile/BareCalibValues.hpp"

#include "sensorfile/SensorFileConfig.hpp"

#include <string>

namespace SensorFile {
namespace {

constexpr std::uint64_t kMaxGroups = 3;
constexpr std::uint64_t kGroupSize = 12;
constexpr Eigen::Index kSide = 3;
constexpr Eigen::Index kGainCount = kSide * kSide;

}  // namespace

BareCalibValues::BareCalibValues(SensorFileConfig& config, std::uint16_t version)
    : config_(config), isCoded_(version == kCodedCalibVersion) {}

void BareCalibValues::add(double value) {
    const std::uint64_t group = count_ / kGroupSize;
    const auto place = static_cast<Eigen::Index>(count_ % kGroupSize);
    ++count_;
    if (group >= kMaxGroups) return;
    const std::string number = std::to_string(group + 1);
    if (place >= kGainCount) {
        offset_(0, place - kGainCount) = value;
        if (place + 1 == kGainCount + kSide) config_.addCalibData("Offset" + number, offset_);
        return;
    }
    if (isCoded_) {
        gain_(place / kSide, place % kSide) = group == 0 ? value * 2 : value;
    } else {
        gain_(place % kSide, place / kSide) = value;
    }
    if (place + 1 == kGainCount) config_.addCalibData("Gain" + number, gain_);
}

}  // namespace SensorFile
