#include "filters/kivra2/FilterRecordKivra2Format.hpp"

#include "filters/common/EndedRecording.hpp"
#include "filters/common/FilePath.hpp"
#include "filters/common/ForceSet.hpp"
#include "filters/common/Numbers.hpp"
#include "filters/kivra2/Kivra2Pins.hpp"
#include "sensorfile/Clock.hpp"
#include "sensorfile/Kivra2Layout.hpp"

#include <exception>

using Filters::FilterGuard;
using Filters::MatrixInputPin;
using Filters::MatrixSample;
namespace Kivra2 = SensorFile::Kivra2;

namespace {

constexpr Eigen::Index kAxes = 3;

bool isConnected(const MatrixInputPin& pin) {
    return pin.getOutputPin() != nullptr;
}

// Does not fetch: a sample that is not used stays in the buffer, where a newer one replaces it.
bool isAvailable(const MatrixInputPin& pin) {
    return isConnected(pin) && (pin.hasData() || pin.getWaitingCount() > 0);
}

const Eigen::MatrixXd& takeValue(MatrixInputPin& pin) {
    pin.fetch();
    return pin.take()->value;
}

bool isGain(const Eigen::MatrixXd& matrix) {
    return matrix.rows() == kAxes && matrix.cols() == kAxes;
}

// The low 16 bits of the number truncated toward zero; 0 for what is no number.
std::uint16_t toCounter(double value) {
    return static_cast<std::uint16_t>(Filters::truncateToInt64(value).value_or(0));
}

}  // namespace

FilterRecordKivra2Format::SensorInputs::SensorInputs(Quoril::Core::Filter& filter,
                                                     const char* sampleName, const char* gainName,
                                                     const char* offsetName)
    : sample(sampleName, &filter), gain(gainName, &filter), offset(offsetName, &filter) {
    sample.setBuffer({.size = kDataBuffer, .isLifo = false});
    gain.setBuffer({.size = Kivra2Pins::kCalibBuffer});
    offset.setBuffer({.size = Kivra2Pins::kCalibBuffer});
}

void FilterRecordKivra2Format::SensorCalib::forgetUnconnected(const SensorInputs& inputs) {
    if (!isConnected(inputs.gain)) gain.resize(0, 0);
    if (!isConnected(inputs.offset)) offset.resize(0, 0);
}

FilterRecordKivra2Format::FilterRecordKivra2Format(const std::string& name)
    : Filter(name, true),
      acc_(*this, Kivra2Pins::kAcc, Kivra2Pins::kAccGain, Kivra2Pins::kAccOffset),
      mag_(*this, Kivra2Pins::kMag, Kivra2Pins::kMagGain, Kivra2Pins::kMagOffset),
      frameNumber_(Kivra2Pins::kFrameNumber, this),
      button_(Kivra2Pins::kButton, this),
      fileName_(kFileName, getPropertyBag()),
      record_(kRecord, getPropertyBag(), false),
      pause_(kPause, getPropertyBag(), false),
      saveGyro_(kSaveGyro, getPropertyBag(), false),
      precision_(kDoublePrecision, getPropertyBag(), 6),
      calibVersion_(kCalibVersion, getPropertyBag(), Kivra2::kCalibFormat) {
    frameNumber_.setBuffer({.size = kDataBuffer, .isLifo = false});
    button_.setBuffer({.size = kDataBuffer, .isLifo = false});
    setUpProperties();
    Kivra2::addColumns(config_);
    onSaveGyro(saveGyro_.get());
    onRecordChanged();
}

FilterRecordKivra2Format::~FilterRecordKivra2Format() = default;

const char* FilterRecordKivra2Format::getClassName() const {
    return kClassName;
}

void FilterRecordKivra2Format::setUpProperties() {
    fileName_.setFilter("*");
    fileName_.setHints(/*mustExist=*/false, /*isFolder=*/false, /*isWritten=*/true);
    // A restored flow must not start to record by itself.
    record_.setIsPersistent(false);
    pause_.setIsPersistent(false);
    precision_.setRange(0, kMaxPrecision, 1);
    calibVersion_.setIsWritable(false);

    Quoril::Core::PropertyBag& bag = *getPropertyBag();
    bag.registerProperty(kFileName, fileName_);
    bag.registerProperty(kRecord, record_);
    bag.registerProperty(kPause, pause_);
    bag.registerProperty(kSaveGyro, saveGyro_);
    bag.registerProperty(kDoublePrecision, precision_);
    bag.registerProperty(kCalibVersion, calibVersion_);

    record_.attach(*this, &FilterRecordKivra2Format::onRecord);
    record_.attach(*this, &FilterRecordKivra2Format::onRecordChanged);
    saveGyro_.attach(*this, &FilterRecordKivra2Format::onSaveGyro);
}

// A typed callback: the stored value of "Record" is still the old one.
void FilterRecordKivra2Format::onRecord(const bool& isOn) {
    const FilterGuard::Busy busy(guard_);
    if (isOn)
        startFile();
    else
        endFile();
}

void FilterRecordKivra2Format::onRecordChanged() {
    const bool isRecording = record_.get();
    if (!isRecording) Filters::forceSet(pause_, false);
    pause_.setIsWritable(isRecording);
    fileName_.setIsWritable(!isRecording);
    precision_.setIsWritable(!isRecording);
    saveGyro_.setIsWritable(!isRecording);
}

void FilterRecordKivra2Format::onSaveGyro(const bool& isOn) {
    const FilterGuard::Busy busy(guard_);
    gyr_.reset();
    if (isOn) {
        gyr_.emplace(*this, Kivra2Pins::kGyr, Kivra2Pins::kGyrGain, Kivra2Pins::kGyrOffset);
        Kivra2::addGyroColumns(config_);
    } else {
        Kivra2::removeGyroColumns(config_);
    }
}

void FilterRecordKivra2Format::startFile() {
    Filters::openWriter(writer_, fileName_.get(), config_, /*binary=*/true, /*writeHeaders=*/false);
}

void FilterRecordKivra2Format::endFile() {
    isHeaderWritten_ = false;
    if (!writer_.isOpen()) return;
    config_.clearCalibData();
    writer_.close();
}

void FilterRecordKivra2Format::abandonFile() noexcept {
    try {
        endFile();
    } catch (const std::exception&) {
        // The file is closed all the same, after the last whole row that it could take.
    }
}

void FilterRecordKivra2Format::process() {
    if (!record_.get()) return;
    const bool isPaused = pause_.get();
    std::exception_ptr error;
    {
        const FilterGuard::Call call(guard_);
        if (!call.isBusy()) error = recordRow(isPaused);
    }
    if (error == nullptr) return;
    // Without the mutex: setting "Record" runs callbacks that take it.
    Filters::logEndedRecording(*this, fileName_.get(), error);
    Filters::forceSetQuietly(record_, false);
}

// Not null when the recording cannot go on. Nothing gets out of a processing call.
std::exception_ptr FilterRecordKivra2Format::recordRow(bool isPaused) {
    // Tested here, under the mutex: a stop may have come after "Record" was read.
    if (!writer_.isOpen()) return nullptr;
    try {
        if (!fetchAll()) return nullptr;
        if (!isHeaderWritten_) writeHeader();
        takeRow(isPaused);
        return nullptr;
    } catch (const std::exception&) {
        std::exception_ptr error = std::current_exception();
        abandonFile();
        return error;
    }
}

// Fetched samples wait on their pins until all others have come.
bool FilterRecordKivra2Format::fetchAll() {
    return acc_.sample.fetch() && mag_.sample.fetch() && (!gyr_ || gyr_->sample.fetch()) &&
           button_.fetch() && (!isConnected(frameNumber_) || frameNumber_.fetch());
}

// What is taken before an empty matrix is found is lost.
void FilterRecordKivra2Format::takeRow(bool isPaused) {
    const MatrixSample& acc = *acc_.sample.take();
    const MatrixSample& mag = *mag_.sample.take();
    const MatrixSample& button = *button_.take();
    if (acc.value.size() == 0 || mag.value.size() == 0 || button.value.size() == 0) return;
    const std::optional<std::uint16_t> counter = takeFrameCounter();
    if (!counter) return;
    const MatrixSample* gyr = gyr_ ? gyr_->sample.take() : nullptr;
    if (isPaused || (gyr != nullptr && gyr->value.size() == 0)) return;
    writeRow(*counter, acc, mag, gyr, button);
}

std::optional<std::uint16_t> FilterRecordKivra2Format::takeFrameCounter() {
    if (!isConnected(frameNumber_)) return 0;
    // Nothing waits if the pin was connected only after the samples were looked for.
    const MatrixSample* frame = frameNumber_.take();
    if (frame == nullptr || frame->value.size() == 0) return std::nullopt;
    return toCounter(*frame->value.data());
}

void FilterRecordKivra2Format::writeRow(std::uint16_t counter, const MatrixSample& acc,
                                        const MatrixSample& mag, const MatrixSample* gyr,
                                        const MatrixSample& button) {
    const auto writeAll = [this](const Eigen::MatrixXd& matrix) {
        for (Eigen::Index i = 0; i < matrix.size(); ++i)
            writer_.write(matrix.data()[i]);
    };
    writer_.write(counter);
    writeAll(acc.value);
    writeAll(mag.value);
    if (gyr != nullptr) writeAll(gyr->value);
    writer_.write(*button.value.data());
}

void FilterRecordKivra2Format::writeHeader() {
    accCalib_.forgetUnconnected(acc_);
    magCalib_.forgetUnconnected(mag_);
    // A header that could not be written must leave nothing behind.
    config_.clearCalibData();
    config_.setCreationTime(SensorFile::Clock::current().now());
    config_.setCalibFormat(Kivra2::kCalibFormat);
    addAccMagCalib();
    config_.setSampleFrequency(peekFrequency());
    if (gyr_) addGyrCalib();
    writer_.writeHeaders(config_);
    isHeaderWritten_ = true;
}

void FilterRecordKivra2Format::addAccMagCalib() {
    if (isAvailable(acc_.gain) && isAvailable(acc_.offset) && isAvailable(mag_.gain) &&
        isAvailable(mag_.offset)) {
        const Eigen::MatrixXd& accGain = takeValue(acc_.gain);
        const Eigen::MatrixXd& accOffset = takeValue(acc_.offset);
        const Eigen::MatrixXd& magGain = takeValue(mag_.gain);
        const Eigen::MatrixXd& magOffset = takeValue(mag_.offset);
        // On purpose one side of each offset is tested and no more.
        if (!isGain(accGain) || !isGain(magGain) || accOffset.rows() != 1 ||
            magOffset.cols() != kAxes)
            return;
        accCalib_ = {accGain, accOffset};
        magCalib_ = {magGain, magOffset};
    } else if (!accCalib_.isKnown() || !magCalib_.isKnown()) {
        return;
    }
    addRecords(accCalib_, Kivra2::kAccGain, Kivra2::kAccOffset);
    addRecords(magCalib_, Kivra2::kMagGain, Kivra2::kMagOffset);
}

void FilterRecordKivra2Format::addGyrCalib() {
    gyrCalib_.forgetUnconnected(*gyr_);
    if (isAvailable(gyr_->gain) && isAvailable(gyr_->offset)) {
        const Eigen::MatrixXd& gain = takeValue(gyr_->gain);
        const Eigen::MatrixXd& offset = takeValue(gyr_->offset);
        if (!isGain(gain) || offset.rows() != 1 || offset.cols() != kAxes) return;
        gyrCalib_ = {gain, offset};
    } else if (!accCalib_.isKnown() || !magCalib_.isKnown() || !gyrCalib_.isKnown()) {
        return;
    }
    addRecords(gyrCalib_, Kivra2::kGyrGain, Kivra2::kGyrOffset);
}

void FilterRecordKivra2Format::addRecords(const SensorCalib& calib, const char* gainName,
                                          const char* offsetName) {
    config_.addCalibData(gainName, calib.gain);
    config_.addCalibData(offsetName, calib.offset);
}

// The third element of the frame number that waits, in Hz; 0 if it has not three elements. It is
// not taken: its counter belongs to the first row.
double FilterRecordKivra2Format::peekFrequency() {
    if (!isConnected(frameNumber_) || !frameNumber_.fetch()) return 0.0;
    const Eigen::MatrixXd& frame = frameNumber_.peek()->value;
    return frame.size() == kAxes ? frame.data()[2] : 0.0;
}
