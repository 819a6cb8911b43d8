#include "tests/support/FilterHarness.hpp"

#include "framework/CommandProperty.hpp"

#include <algorithm>
#include <stdexcept>

namespace Support {

Eigen::MatrixXd matrix(std::initializer_list<std::initializer_list<double>> rows) {
    const auto rowCount = static_cast<Eigen::Index>(rows.size());
    const auto columnCount = rowCount == 0 ? 0 : static_cast<Eigen::Index>(rows.begin()->size());
    Eigen::MatrixXd result(rowCount, columnCount);
    Eigen::Index r = 0;
    for (const auto& row : rows) {
        Eigen::Index c = 0;
        for (const double value : row)
            result(r, c++) = value;
        ++r;
    }
    return result;
}

Eigen::MatrixXd column(std::initializer_list<double> values) {
    Eigen::MatrixXd result(static_cast<Eigen::Index>(values.size()), 1);
    std::copy(values.begin(), values.end(), result.data());
    return result;
}

std::vector<std::string> FilterHarness::propertyNames() const {
    return filter_.getPropertyBag()->getNames();
}

Quoril::Core::AbstractProperty& FilterHarness::property(const std::string& name) const {
    Quoril::Core::AbstractProperty* found = filter_.getPropertyBag()->find(name);
    if (found == nullptr) throw std::logic_error("no property " + name);
    return *found;
}

void FilterHarness::choose(const std::string& name, const std::string& entry) {
    auto& choice = dynamic_cast<Quoril::Core::EnumProperty<std::string>&>(property(name));
    const auto& entries = choice.getEntries();
    const auto found = std::find(entries.begin(), entries.end(), entry);
    if (found == entries.end()) throw std::logic_error("no entry " + entry);
    choice.set(static_cast<unsigned>(found - entries.begin()));
}

void FilterHarness::trigger(const std::string& name) {
    dynamic_cast<Quoril::Core::CommandProperty&>(property(name)).trigger();
}

bool FilterHarness::isWritable(const std::string& name) const {
    return property(name).getIsWritable();
}

std::vector<std::string> FilterHarness::lockedNames() const {
    std::vector<std::string> names = propertyNames();
    std::erase_if(names, [&](const std::string& name) { return isWritable(name); });
    return names;
}

std::vector<std::string> FilterHarness::inputNames() const {
    std::vector<std::string> names;
    for (const auto* pin : filter_.getInputPins())
        names.push_back(pin->getName());
    return names;
}

std::vector<std::string> FilterHarness::outputNames() const {
    std::vector<std::string> names;
    for (const auto* pin : filter_.getOutputPins())
        names.push_back(pin->getName());
    return names;
}

Quoril::Core::AbstractInputPin& FilterHarness::input(const std::string& name) const {
    Quoril::Core::AbstractInputPin* found = filter_.findInputPin(name);
    if (found == nullptr) throw std::logic_error("no input pin " + name);
    return *found;
}

void FilterHarness::connect(const std::string& pin) {
    Quoril::Core::AbstractInputPin& target = input(pin);
    if (target.getOutputPin() != nullptr) return;
    auto source = std::make_unique<Source>("to " + pin, nullptr);
    source->attach(target, /*skipNotification=*/true);
    sources_[pin] = std::move(source);
}

void FilterHarness::disconnect(const std::string& pin) {
    sources_.erase(pin);
}

void FilterHarness::push(const std::string& pin, const Eigen::MatrixXd& value, double timeStamp) {
    connect(pin);
    Source& source = *sources_.at(pin);
    source.getValue() = value;
    source.push(timeStamp);
}

void FilterHarness::watch() {
    sinks_.clear();
    for (auto* pin : filter_.getOutputPins()) {
        auto sink = std::make_unique<Sink>(pin->getName(), nullptr);
        sink->setBuffer({.size = 4096, .isLifo = false});
        pin->attach(*sink, /*skipNotification=*/true);
        sinks_.push_back(std::move(sink));
    }
}

std::vector<Sample> FilterHarness::pull(const std::string& pin, std::size_t nth) {
    std::vector<Sample> samples;
    for (const auto& sink : sinks_) {
        if (sink->getName() != pin || nth-- > 0) continue;
        while (sink->fetch())
            samples.push_back(*sink->take());
        return samples;
    }
    throw std::logic_error("no output pin is watched under the name " + pin);
}

std::vector<std::vector<double>> FilterHarness::pullValues(const std::string& pin,
                                                           std::size_t nth) {
    std::vector<std::vector<double>> values;
    for (const Sample& sample : pull(pin, nth))
        values.emplace_back(sample.value.data(), sample.value.data() + sample.value.size());
    return values;
}

std::vector<double> FilterHarness::pullTimes(const std::string& pin) {
    std::vector<double> times;
    for (const Sample& sample : pull(pin))
        times.push_back(sample.timeStamp);
    return times;
}

void FilterHarness::step(int calls) {
    for (int i = 0; i < calls; ++i)
        filter_.process();
}

}  // namespace Support
