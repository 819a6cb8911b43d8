#include "tools/gen/SyntheticRecording.hpp"

#include "sensorfile/ColumnType.hpp"
#include "sensorfile/Kivra2Layout.hpp"

#include <algorithm>
#include <cmath>

#include <Eigen/Core>

namespace SensorFileTool {

namespace Kivra2 = SensorFile::Kivra2;
using Layout = SyntheticOptions::Layout;

namespace {

constexpr double kSecond = 1e9;  // ns
constexpr std::int64_t kMaxCount = 32767;
constexpr std::uint64_t kCounterMask = 0xffff;
// Time stamps in text have nanoseconds.
constexpr int kTextPrecision = 9;
// The unit's button is held for a second every ten.
constexpr double kButtonPeriod = 10.0;  // s
constexpr double kButtonStart = 5.0;    // s
constexpr double kButtonTime = 1.0;     // s

/// The share of all 53-bit numbers that is below the result.
std::uint64_t toThreshold(double share) {
    constexpr double kRange = 9007199254740992.0;  // 2^53
    return static_cast<std::uint64_t>(share * kRange);
}

}  // namespace

// Consumer sensors: 16 g, 2000 deg/s and 1600 uT are their largest values.
const SyntheticRecording::Sensor SyntheticRecording::kAcc{
    &SyntheticMotion::Sample::acceleration, 20000, 1000000, {209, 208, 211}, {12, -27, 35}};
const SyntheticRecording::Sensor SyntheticRecording::kGyr{
    &SyntheticMotion::Sample::rate, 2000, 1000000, {938, 941, 937}, {-14, 8, 3}};
const SyntheticRecording::Sensor SyntheticRecording::kMag{
    &SyntheticMotion::Sample::field, 150, 1000, {20, 20, 19}, {131, -58, 77}};

SyntheticRecording::SyntheticRecording(const SyntheticOptions& options)
    : options_(options),
      random_(options.seed),
      motion_(options.frequency, random_.next()),
      lostBelow_(toThreshold(options.lostShare)),
      startNanoseconds_(options.start.timestamp().epochMicroseconds() * 1000) {
    config_.setSampleFrequency(options.frequency);
    config_.setCreationTime(options.start);
    config_.setCalibTime(options.start);
    config_.setDoublePrecision(kTextPrecision);
    defineColumns();
    if (options.layout != Layout::kImu) addRecords();
    row_ = Row(config_);
}

void SyntheticRecording::defineColumns() {
    if (options_.layout == Layout::kKivra2) {
        Kivra2::addColumns(config_);
        Kivra2::addGyroColumns(config_);
        return;
    }
    const bool isImu = options_.layout == Layout::kImu;
    config_.addColumn("COUNT", SensorFile::kUInt16);
    config_.addColumn(isImu ? "TIME" : "TIME_NS", isImu ? SensorFile::kDouble : SensorFile::kInt64);
    for (const auto& names : {Kivra2::kAccColumns, Kivra2::kGyrColumns, Kivra2::kMagColumns})
        for (const char* name : names)
            config_.addColumn(name, isImu ? SensorFile::kFloat : SensorFile::kInt16);
}

void SyntheticRecording::addRecords() {
    addRecords(kAcc, Kivra2::kAccGain, Kivra2::kAccOffset);
    addRecords(kMag, Kivra2::kMagGain, Kivra2::kMagOffset);
    addRecords(kGyr, Kivra2::kGyrGain, Kivra2::kGyrOffset);
}

void SyntheticRecording::addRecords(const Sensor& sensor, const char* gain, const char* offset) {
    Eigen::Matrix3d gains = Eigen::Matrix3d::Zero();
    Eigen::RowVector3d offsets;
    for (Eigen::Index axis = 0; axis < offsets.size(); ++axis) {
        const auto index = static_cast<std::size_t>(axis);
        gains(axis, axis) = 1.0 / static_cast<double>(sensor.scale[index]);
        offsets(axis) = static_cast<double>(sensor.offset[index]);
    }
    config_.addCalibData(gain, gains);
    config_.addCalibData(offset, offsets);
}

bool SyntheticRecording::next() {
    constexpr unsigned kUnusedBits = 11;  // of 64, for 53
    const bool isLost = random_.next() >> kUnusedBits < lostBelow_;
    if (!isLost) fillRow();
    ++frame_;
    return !isLost;
}

void SyntheticRecording::fillRow() {
    const SyntheticMotion::Sample sample = motion_.sampleAt(frame_);
    row_.setValue(0, static_cast<double>(frame_ & kCounterMask));
    if (options_.layout == Layout::kKivra2) {
        const std::size_t gyro = fillSensor(kMag, sample, fillSensor(kAcc, sample, 1));
        row_.setValue(fillSensor(kGyr, sample, gyro), buttonsOf(frame_));
        return;
    }
    const std::int64_t stamp = nanosecondsOf(frame_);
    if (options_.layout == Layout::kImu)
        row_.setValue(1, static_cast<double>(stamp) / kSecond);
    else
        row_.setBits(1, static_cast<std::uint64_t>(startNanoseconds_ + stamp));
    fillSensor(kMag, sample, fillSensor(kGyr, sample, fillSensor(kAcc, sample, 2)));
}

std::size_t SyntheticRecording::fillSensor(const Sensor& sensor,
                                           const SyntheticMotion::Sample& sample,
                                           std::size_t column) {
    const SyntheticMotion::Vector& quantity = sample.*sensor.quantity;
    for (std::size_t axis = 0; axis < quantity.size(); ++axis) {
        const std::int64_t noisy = quantity[axis] + random_.noise(sensor.noise);
        if (options_.layout == Layout::kImu) {
            row_.setValue(column++, static_cast<double>(noisy) / static_cast<double>(sensor.unit));
        } else {
            const std::int64_t count =
                noisy * sensor.scale[axis] / sensor.unit + sensor.offset[axis];
            row_.setValue(column++, static_cast<double>(std::clamp(count, -kMaxCount, kMaxCount)));
        }
    }
    return column;
}

std::int64_t SyntheticRecording::nanosecondsOf(std::uint64_t frame) {
    const auto ideal =
        static_cast<std::int64_t>(static_cast<double>(frame) * kSecond / options_.frequency);
    if (options_.jitter == 0.0) return ideal;
    constexpr int kFractionBits = 31;
    const auto range = static_cast<std::int64_t>(options_.jitter * kSecond);
    const auto fraction = static_cast<std::int64_t>(random_.next() >> (64U - kFractionBits));
    return ideal - range + (2 * range * fraction >> kFractionBits);
}

double SyntheticRecording::buttonsOf(std::uint64_t frame) const {
    const double time = std::fmod(static_cast<double>(frame) / options_.frequency, kButtonPeriod);
    return time >= kButtonStart && time < kButtonStart + kButtonTime ? 1.0 : 0.0;
}

}  // namespace SensorFileTool
