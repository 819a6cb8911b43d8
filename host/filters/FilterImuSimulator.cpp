#include "host/filters/FilterImuSimulator.hpp"

#include "host/filters/MatrixText.hpp"

#include <algorithm>
#include <cmath>
#include <limits>

#include <Poco/Exception.h>

namespace Quoril::Core {
namespace {

constexpr std::uint64_t kCounterModulus = 65536;
constexpr double kButtonPeriod = 10.0;

ImuVector parseBias(const std::string& text) {
    const Eigen::MatrixXd numbers = parseMatrix(text);
    if ((numbers.size() != 1 && numbers.size() != 3) || !numbers.allFinite())
        throw Poco::DataFormatException(
            "A bias is one number for all axes, or three, such as '0.1 0 -0.2'");
    const bool isOne = numbers.size() == 1;
    const double* values = numbers.data();
    return {values[0], values[isOne ? 0 : 1], values[isOne ? 0 : 2]};
}

bool isButtonPressed(double seconds) {
    const double second = std::floor(seconds);
    return second - kButtonPeriod * std::floor(second / kButtonPeriod) < 1.0;
}

}  // namespace

FilterImuSimulator::FilterImuSimulator(const std::string& name)
    : Filter(name, true),
      acc_(kAccPin, this),
      gyr_(kGyrPin, this),
      mag_(kMagPin, this),
      frame_(kFramePin, this),
      button_(kButtonPin, this),
      time_(kTimePin, this),
      accGain_(kAccGainPin, this),
      accOffset_(kAccOffsetPin, this),
      gyrGain_(kGyrGainPin, this),
      gyrOffset_(kGyrOffsetPin, this),
      magGain_(kMagGainPin, this),
      magOffset_(kMagOffsetPin, this),
      rate_(kRate, getPropertyBag(), 200.0),
      seed_(kSeed, getPropertyBag(), 1),
      count_(kCount, getPropertyBag(), 0),
      startTime_(kStartTime, getPropertyBag(), 0.0),
      accDensity_(kAccNoiseDensity, getPropertyBag(), 0.0012),
      gyrDensity_(kGyrNoiseDensity, getPropertyBag(), 0.00012),
      magDensity_(kMagNoiseDensity, getPropertyBag(), 0.04),
      accBias_(kAccBias, getPropertyBag()),
      gyrBias_(kGyrBias, getPropertyBag()),
      magBias_(kMagBias, getPropertyBag()),
      dropOut_(kDropOutProbability, getPropertyBag(), 0.0),
      rawCounts_(kRawCounts, getPropertyBag(), false),
      active_(kActive, getPropertyBag(), true),
      sendCalibration_(kSendCalibration, getPropertyBag()),
      model_(settings_) {
    accBias_.set("0");
    gyrBias_.set("0");
    magBias_.set("0");
    count_.setRange(0, std::numeric_limits<int>::max(), 1);
    active_.setIsPersistent(false);
    shapePins();
    registerProperties();
    attachHandlers();
    takeErrors();
    onRate();
}

FilterImuSimulator::~FilterImuSimulator() = default;

void FilterImuSimulator::shapePins() {
    for (Pin* pin : {&acc_, &gyr_, &mag_})
        pin->getValue().setZero(3, 1);
    for (Pin* pin : {&button_, &time_})
        pin->getValue().setZero(1, 1);
    frame_.getValue().setZero(1, 3);
}

void FilterImuSimulator::registerProperties() {
    PropertyBag& bag = *getPropertyBag();
    bag.registerProperty(kRate, rate_);
    bag.registerProperty(kSeed, seed_);
    bag.registerProperty(kCount, count_);
    bag.registerProperty(kStartTime, startTime_);
    bag.registerProperty(kAccNoiseDensity, accDensity_);
    bag.registerProperty(kGyrNoiseDensity, gyrDensity_);
    bag.registerProperty(kMagNoiseDensity, magDensity_);
    bag.registerProperty(kAccBias, accBias_);
    bag.registerProperty(kGyrBias, gyrBias_);
    bag.registerProperty(kMagBias, magBias_);
    bag.registerProperty(kDropOutProbability, dropOut_);
    bag.registerProperty(kRawCounts, rawCounts_);
    bag.registerProperty(kActive, active_);
    bag.registerProperty(kSendCalibration, sendCalibration_);
}

void FilterImuSimulator::attachHandlers() {
    rate_.attach(*this, &FilterImuSimulator::checkRate);
    rate_.attach(*this, &FilterImuSimulator::onRate);
    seed_.attach(*this, &FilterImuSimulator::restart);
    startTime_.attach(*this, &FilterImuSimulator::checkStartTime);
    dropOut_.attach(*this, &FilterImuSimulator::checkDropOut);
    for (ValueProperty<double>* density : {&accDensity_, &gyrDensity_, &magDensity_})
        density->attach(*this, &FilterImuSimulator::checkDensity);
    for (StringProperty* bias : {&accBias_, &gyrBias_, &magBias_})
        bias->attach(*this, &FilterImuSimulator::checkBias);
    for (AbstractProperty* property : std::initializer_list<AbstractProperty*>{
             &count_, &startTime_, &accDensity_, &gyrDensity_, &magDensity_, &accBias_, &gyrBias_,
             &magBias_, &dropOut_, &rawCounts_})
        property->attach(*this, &FilterImuSimulator::takeErrors);
    active_.attach(*this, &FilterImuSimulator::onActive);
    sendCalibration_.attach(*this, &FilterImuSimulator::onSendCalibration);
}

void FilterImuSimulator::checkRate(const double& rate) {
    if (!std::isfinite(rate) || rate <= 0.0)
        throw Poco::RangeException("\"Rate\" must be above 0 frames per second");
}

void FilterImuSimulator::checkStartTime(const double& time) {
    if (!std::isfinite(time)) throw Poco::RangeException("\"Start Time\" must be a finite number");
}

void FilterImuSimulator::checkDensity(const double& density) {
    if (!std::isfinite(density) || density < 0.0)
        throw Poco::RangeException("A noise density must be 0 or above");
}

void FilterImuSimulator::checkBias(const std::string& text) {
    (void)parseBias(text);
}

void FilterImuSimulator::checkDropOut(const double& probability) {
    if (!(probability >= 0.0 && probability <= kMaxDropOut))
        throw Poco::RangeException("\"Drop-out Probability\" must be from 0 to 0.99");
}

void FilterImuSimulator::onRate() {
    pace_.setRate(rate_.get());
    restart();
}

void FilterImuSimulator::onActive(const bool& isActive) {
    if (isActive && !isActive_ && hasEnded()) restart();
    isActive_ = isActive;
}

void FilterImuSimulator::onSendCalibration() {
    isCalibrationDue_ = true;
}

void FilterImuSimulator::takeErrors() {
    limit_ = static_cast<std::uint64_t>(count_.get());
    start_ = startTime_.get();
    settings_.acc = {accDensity_.get(), parseBias(accBias_.get()), kAccPerCount};
    settings_.gyr = {gyrDensity_.get(), parseBias(gyrBias_.get()), kGyrPerCount};
    settings_.mag = {magDensity_.get(), parseBias(magBias_.get()), kMagPerCount};
    settings_.dropOutProbability = dropOut_.get();
    settings_.isRaw = rawCounts_.get();
    model_.setErrors(settings_);
}

void FilterImuSimulator::restart() {
    settings_.rate = rate_.get();
    settings_.seed = static_cast<std::uint32_t>(seed_.get());
    model_ = ImuModel(settings_);
    sent_ = 0;
    isCalibrationDue_ = true;
}

void FilterImuSimulator::process() {
    if (isCalibrationDue_) {
        sendCalibration();
        // On the command alone the call comes before the next frame is due.
        if (sent_ > 0) return;
    }
    if (!isActive_ || hasEnded()) return;
    sendFrame();
    ++sent_;
    pace_.advance(model_.advance());
    if (hasEnded()) active_.set(false);
}

void FilterImuSimulator::sendFrame() {
    const ImuFrame frame = model_.getFrame();
    const std::uint64_t index = model_.getIndex();
    const double timeStamp = getTimeStamp();
    sendVector(acc_, frame.acc, timeStamp);
    sendVector(gyr_, frame.gyr, timeStamp);
    sendVector(mag_, frame.mag, timeStamp);

    double* info = frame_.getValue().data();
    info[0] = static_cast<double>(index % kCounterModulus);
    info[1] = static_cast<double>(index - sent_) / static_cast<double>(index + 1);
    info[2] = settings_.rate;
    frame_.push(timeStamp);
    const double sinceStart = static_cast<double>(index) / settings_.rate;
    button_.getValue()(0, 0) = isButtonPressed(sinceStart) ? 1.0 : 0.0;
    button_.push(timeStamp);
    time_.getValue()(0, 0) = timeStamp;
    time_.push(timeStamp);
}

void FilterImuSimulator::sendVector(Pin& pin, const ImuVector& values, double timeStamp) {
    std::copy(values.begin(), values.end(), pin.getValue().data());
    pin.push(timeStamp);
}

void FilterImuSimulator::sendCalibration() {
    isCalibrationDue_ = false;
    sendCalibrationOf(accGain_, accOffset_, settings_.acc);
    sendCalibrationOf(gyrGain_, gyrOffset_, settings_.gyr);
    sendCalibrationOf(magGain_, magOffset_, settings_.mag);
}

void FilterImuSimulator::sendCalibrationOf(Pin& gain, Pin& offset,
                                           const ImuSensorSettings& sensor) {
    const double unit = settings_.isRaw ? sensor.unitsPerCount : 1.0;
    gain.getValue() = Eigen::MatrixXd::Identity(3, 3) * unit;
    gain.push(getTimeStamp());
    offset.getValue().resize(1, 3);
    for (std::size_t i = 0; i < sensor.bias.size(); ++i)
        offset.getValue().data()[i] = sensor.bias[i] / unit;
    offset.push(getTimeStamp());
}

double FilterImuSimulator::getTimeStamp() const {
    return start_ + static_cast<double>(model_.getIndex()) / settings_.rate;
}

bool FilterImuSimulator::hasEnded() const {
    return limit_ > 0 && sent_ >= limit_;
}

bool FilterImuSimulator::isFinished() const {
    return hasEnded() && !isCalibrationDue_;
}

std::optional<double> FilterImuSimulator::getNextDueTime() const {
    if (!isActive_ || isCalibrationDue_) return std::nullopt;
    return pace_.getDueTime();
}

}  // namespace Quoril::Core
