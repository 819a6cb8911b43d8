#include "filters/kivra2/FilterReplayKivra2Format.hpp"

#include "filters/common/FilePath.hpp"
#include "filters/common/ForceSet.hpp"
#include "filters/common/Numbers.hpp"
#include "filters/common/Sleep.hpp"
#include "filters/common/WallClock.hpp"
#include "filters/kivra2/Kivra2Pins.hpp"
#include "sensorfile/Kivra2Layout.hpp"

#include <algorithm>
#include <cstddef>
#include <exception>

#include <Poco/Exception.h>
#include <Poco/Path.h>

using Filters::FilterGuard;
using Filters::forceSet;
using Filters::MatrixOutputPin;
using SensorFile::SensorFileConfig;
namespace Kivra2 = SensorFile::Kivra2;

namespace {

constexpr Eigen::Index kAxes = 3;
constexpr std::uint32_t kHighestCounter = 65535;

// Keeps the pin's matrix unless the file has a record of its shape.
void fillFrom(const SensorFileConfig& config, const char* name, MatrixOutputPin& pin) {
    const int record = config.findCalibData(name);
    if (record < 0) return;
    const Eigen::MatrixXd matrix =
        Filters::calibMatrix(config.getCalibData(static_cast<std::size_t>(record)));
    Eigen::MatrixXd& value = pin.getValue();
    if (matrix.rows() == value.rows() && matrix.cols() == value.cols()) value = matrix;
}

}  // namespace

FilterReplayKivra2Format::SensorOutputs::SensorOutputs(Quoril::Core::Filter& filter,
                                                       const char* sampleName, const char* gainName,
                                                       const char* offsetName)
    : sample(sampleName, &filter), gain(gainName, &filter), offset(offsetName, &filter) {
    reset();
}

void FilterReplayKivra2Format::SensorOutputs::reset() {
    sample.getValue().setZero(1, kAxes);
    gain.getValue().setIdentity(kAxes, kAxes);
    offset.getValue().setZero(1, kAxes);
}

void FilterReplayKivra2Format::SensorOutputs::fillCalib(const SensorFileConfig& config,
                                                        const char* gainName,
                                                        const char* offsetName) {
    fillFrom(config, gainName, gain);
    fillFrom(config, offsetName, offset);
}

void FilterReplayKivra2Format::SensorOutputs::fillSample(const double* values) {
    std::copy_n(values, kAxes, sample.getValue().data());
}

void FilterReplayKivra2Format::SensorOutputs::sendCalib(double timeStamp) {
    gain.push(timeStamp);
    offset.push(timeStamp);
}

FilterReplayKivra2Format::FilterReplayKivra2Format(const std::string& name)
    : Filter(name, true),
      acc_(*this, Kivra2Pins::kAcc, Kivra2Pins::kAccGain, Kivra2Pins::kAccOffset),
      mag_(*this, Kivra2Pins::kMag, Kivra2Pins::kMagGain, Kivra2Pins::kMagOffset),
      frameNumber_(Kivra2Pins::kFrameNumber, this),
      button_(Kivra2Pins::kButton, this),
      loadFile_(kLoadFile, getPropertyBag()),
      replay_(kReplay, getPropertyBag(), false),
      pause_(kPause, getPropertyBag(), false),
      autoReplay_(kAutoReplay, getPropertyBag(), false),
      keepFrequency_(kKeepFrequency, getPropertyBag(), false),
      forceTicks_(kForceTicks, getPropertyBag(), false),
      sampleDelay_(kSampleDelay, getPropertyBag(), 10),
      recordFrequency_(kRecordFrequency, getPropertyBag(), 0.0),
      calibVersion_(kCalibVersion, getPropertyBag(), 0),
      lossTracker_(kHighestCounter) {
    setUpProperties();
    registerProperties();
    reset();
    loadFile_.attach(*this, &FilterReplayKivra2Format::onLoadFile);
    replay_.attach(*this, &FilterReplayKivra2Format::onReplay);
}

FilterReplayKivra2Format::~FilterReplayKivra2Format() = default;

const char* FilterReplayKivra2Format::getClassName() const {
    return kClassName;
}

void FilterReplayKivra2Format::setUpProperties() {
    loadFile_.setFilter("*");
    loadFile_.setHints(/*mustExist=*/true, /*isFolder=*/false, /*isWritten=*/false);
    // A restored flow must not start to replay by itself.
    replay_.setIsPersistent(false);
    pause_.setIsPersistent(false);
    sampleDelay_.setRange(0, 1000, 1);
    recordFrequency_.setIsWritable(false);
    calibVersion_.setIsWritable(false);
    setControlsWritable(false);
}

void FilterReplayKivra2Format::registerProperties() {
    Quoril::Core::AbstractProperty* const properties[] = {
        &loadFile_,   &replay_,      &pause_,           &autoReplay_,   &keepFrequency_,
        &forceTicks_, &sampleDelay_, &recordFrequency_, &calibVersion_,
    };
    for (Quoril::Core::AbstractProperty* property : properties)
        getPropertyBag()->registerProperty(property->getName(), *property);
}

// The typed callbacks run before the value is stored: the property still has the old one.
void FilterReplayKivra2Format::onLoadFile(const std::string& file) {
    load(Poco::Path::expand(file));
}

void FilterReplayKivra2Format::onReplay(const bool& isOn) {
    const FilterGuard::Busy busy(guard_);
    isReplaying_ = isOn;
    if (!isOn || !reader_.isOpen()) return;
    reader_.rewind();
    // Otherwise every row would be a step back until the last counter is reached again.
    pacing_.forgetCounter();
}

void FilterReplayKivra2Format::load(const std::string& file) {
    const FilterGuard::Busy busy(guard_);
    reset();
    setControlsWritable(false);
    if (file.empty()) return;
    try {
        openFile(file);
    } catch (...) {
        reader_.close();
        throw;
    }
    setControlsWritable(true);
}

void FilterReplayKivra2Format::reset() {
    forceSet(replay_, false);
    forceSet(pause_, false);
    reader_.close();
    pacing_.setFrequency(0.0);
    pacing_.forgetCounter();
    acc_.reset();
    mag_.reset();
    if (gyr_) gyr_->reset();
    frameNumber_.getValue().setZero(1, kAxes);
    button_.getValue().setZero(1, 1);
}

void FilterReplayKivra2Format::openFile(const std::string& file) {
    Filters::openReader(reader_, file, /*binary=*/true);
    config_ = reader_.getConfig();
    pacing_.setFrequency(config_.getSampleFrequency());
    forceSet(recordFrequency_, config_.getSampleFrequency());
    forceSet(calibVersion_, static_cast<int>(config_.getCalibFormat()));
    if (!Kivra2::isLayout(config_)) throw Poco::DataException(kInvalidFormat);
    row_.assign(config_.getColumnCount(), 0.0);
    makeGyroPins();
    fillCalib();
}

// Pins that are there already stay, with their connections.
void FilterReplayKivra2Format::makeGyroPins() {
    if (!Kivra2::hasGyro(config_))
        gyr_.reset();
    else if (!gyr_)
        gyr_.emplace(*this, Kivra2Pins::kGyr, Kivra2Pins::kGyrGain, Kivra2Pins::kGyrOffset);
}

void FilterReplayKivra2Format::fillCalib() {
    acc_.fillCalib(config_, Kivra2::kAccGain, Kivra2::kAccOffset);
    mag_.fillCalib(config_, Kivra2::kMagGain, Kivra2::kMagOffset);
    if (gyr_) gyr_->fillCalib(config_, Kivra2::kGyrGain, Kivra2::kGyrOffset);
}

void FilterReplayKivra2Format::setControlsWritable(bool isLoaded) {
    replay_.setIsWritable(isLoaded);
    autoReplay_.setIsWritable(isLoaded);
    keepFrequency_.setIsWritable(isLoaded && pacing_.getFrequency() > 0.0);
    forceTicks_.setIsWritable(isLoaded);
    sampleDelay_.setIsWritable(isLoaded);
}

void FilterReplayKivra2Format::process() {
    if (!replay_.get() || pause_.get()) return;
    const CallSettings settings = readSettings();
    {
        const FilterGuard::Call call(guard_);
        // Tested again, under the mutex: a stop may have come after "Replay" was read.
        if (call.isBusy() || !isReplaying_ || replayRow(settings)) return;
    }
    // Without the mutex: setting "Replay" runs a callback that takes it.
    Filters::forceSetQuietly(replay_, false);
}

FilterReplayKivra2Format::CallSettings FilterReplayKivra2Format::readSettings() const {
    CallSettings settings;
    if (keepFrequency_.get())
        settings.pacing.mode = FramePacing::Mode::kFileFrequency;
    else if (forceTicks_.get())
        settings.pacing.mode = FramePacing::Mode::kTicks;
    settings.pacing.delay = sampleDelay_.get();
    settings.repeats = autoReplay_.get();
    return settings;
}

// False when the replay has ended. Nothing gets out of a processing call.
bool FilterReplayKivra2Format::replayRow(const CallSettings& settings) {
    if (!reader_.isOpen()) return true;
    try {
        sendCalib();
        if (reader_.readRow(row_)) {
            playRow(settings.pacing);
            return true;
        }
        if (!settings.repeats) return false;
        reader_.rewind();
        pacing_.forgetCounter();
        return true;
    } catch (const std::exception&) {
        // A file that cannot be read any further ends like any other.
        return false;
    }
}

void FilterReplayKivra2Format::sendCalib() {
    const double now = Filters::unixTime();
    acc_.sendCalib(now);
    mag_.sendCalib(now);
    if (gyr_) gyr_->sendCalib(now);
}

// The pins' matrices change only when they are sent: readers beside them look at the last ones.
void FilterReplayKivra2Format::playRow(const FramePacing::Settings& settings) {
    const std::int32_t counter = Filters::truncateToInt32(row_.front());
    // As the file says it: 0 in the first row of a file without a frequency.
    const double frequency = pacing_.getFrequency();
    const FramePacing::Step step = pacing_.next(settings, counter);
    if (!step.isSent) return;
    Filters::sleepMilliseconds(step.sleepTime);
    lossTracker_.update(static_cast<std::uint32_t>(counter));
    fillRow(frequency);
    sendRow();
}

void FilterReplayKivra2Format::fillRow(double frequency) {
    const double* values = row_.data();
    double* frame = frameNumber_.getValue().data();
    frame[0] = *values++;
    frame[1] = lossTracker_.getLossRatio();
    frame[2] = frequency;
    acc_.fillSample(values);
    mag_.fillSample(values + kAxes);
    if (gyr_) gyr_->fillSample(values + 2 * kAxes);
    *button_.getValue().data() = row_.back();
}

void FilterReplayKivra2Format::sendRow() {
    const double time = pacing_.getTime();
    acc_.sample.push(time);
    mag_.sample.push(time);
    button_.push(time);
    frameNumber_.push(time);
    if (gyr_) gyr_->sample.push(time);
}
