#include "host/filters/ImuModel.hpp"

#include <algorithm>
#include <cmath>

namespace Quoril::Core {
namespace {

// Symmetric, as sensors that clip do it.
constexpr double kLargestCount = 32767.0;

double toCount(double value, double unitsPerCount) {
    const double count = std::floor(value / unitsPerCount + 0.5);
    return std::clamp(count, -kLargestCount, kLargestCount);
}

ImuVector measure(const ImuVector& ideal, const ImuSensorSettings& sensor, double deviation,
                  const double* normals, bool isRaw) {
    ImuVector values{};
    for (std::size_t i = 0; i < values.size(); ++i) {
        values[i] = ideal[i] + sensor.bias[i] + deviation * normals[i];
        if (isRaw) values[i] = toCount(values[i], sensor.unitsPerCount);
    }
    return values;
}

}  // namespace

ImuModel::ImuModel(const ImuSettings& settings)
    : settings_(settings), noise_(settings.seed), motion_(settings.rate) {
    updateDeviations();
}

void ImuModel::setErrors(const ImuSettings& settings) {
    const double rate = settings_.rate;
    settings_ = settings;
    settings_.rate = rate;
    updateDeviations();
}

void ImuModel::updateDeviations() {
    // White noise of that density fills the band up to half the rate.
    const double root = std::sqrt(settings_.rate / 2.0);
    accDeviation_ = settings_.acc.noiseDensity * root;
    gyrDeviation_ = settings_.gyr.noiseDensity * root;
    magDeviation_ = settings_.mag.noiseDensity * root;
}

ImuFrame ImuModel::getFrame() const {
    const ImuMotion::Sample ideal = motion_.getSample();
    const auto normals = noise_.getNormals(index_);
    const bool isRaw = settings_.isRaw;
    ImuFrame frame;
    frame.acc = measure(ideal.acceleration, settings_.acc, accDeviation_, normals.data(), isRaw);
    frame.gyr = measure(ideal.turnRate, settings_.gyr, gyrDeviation_, normals.data() + 3, isRaw);
    frame.mag = measure(ideal.field, settings_.mag, magDeviation_, normals.data() + 6, isRaw);
    return frame;
}

std::uint64_t ImuModel::advance() {
    const std::uint64_t before = index_;
    do {
        ++index_;
        motion_.step();
    } while (dropsOut());
    return index_ - before;
}

bool ImuModel::dropsOut() const {
    return settings_.dropOutProbability > 0.0 &&
           noise_.getUniform(index_) < settings_.dropOutProbability;
}

}  // namespace Quoril::Core
