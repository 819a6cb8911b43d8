#include "host/filters/FilterProbe.hpp"

#include "host/filters/SampleLine.hpp"
#include "host/filters/SystemPath.hpp"

#include <cstddef>
#include <iostream>

#include <Poco/Exception.h>

namespace Quoril::Core {
namespace {

// Lines are handed over in pieces, so that a long drain does not gather them all.
constexpr std::size_t kBlockSize = std::size_t{64} * 1024;

}  // namespace

struct FilterProbe::ProbedPin {
    ProbedPin(const std::string& name, FilterProbe* owner) : pin(name, owner) {
        pin.setBuffer({kBufferSize, /*isLifo=*/false});
    }

    InputPin<Eigen::MatrixXd> pin;
    std::string members;  ///< start of the pin's lines
};

FilterProbe::FilterProbe(const std::string& name)
    : Filter(name, true),
      fileName_(kFileName, getPropertyBag()),
      label_(kLabel, getPropertyBag()),
      pinsNumber_(kPinsNumber, getPropertyBag(), 0) {
    fileName_.setHints(/*mustExist=*/false, /*isFolder=*/false, /*isWritten=*/true);
    pinsNumber_.setRange(0, kMaxPins, 1);
    PropertyBag& bag = *getPropertyBag();
    bag.registerProperty(kFileName, fileName_);
    bag.registerProperty(kLabel, label_);
    bag.registerProperty(kPinsNumber, pinsNumber_);
    fileName_.attach(*this, &FilterProbe::onFileName);
    label_.attach(*this, &FilterProbe::onLabel);
    pinsNumber_.attach(*this, &FilterProbe::onPinsNumber);
}

FilterProbe::~FilterProbe() = default;

void FilterProbe::onFileName() {
    file_ = std::ofstream();
    hasFailed_ = false;
}

void FilterProbe::onLabel() {
    for (const auto& pin : pins_)
        setMembers(*pin);
}

void FilterProbe::onPinsNumber() {
    const auto count = static_cast<std::size_t>(pinsNumber_.get());
    while (pins_.size() > count)
        pins_.pop_back();
    while (pins_.size() < count) {
        const std::string name = kPinPrefix + std::to_string(pins_.size() + 1);
        pins_.push_back(std::make_unique<ProbedPin>(name, this));
        setMembers(*pins_.back());
    }
}

void FilterProbe::setMembers(ProbedPin& pin) const {
    const std::string label = label_.get();
    pin.members = label.empty() ? "" : "\"label\":" + toJsonString(label) + ",";
    pin.members += "\"pin\":" + toJsonString(pin.pin.getName());
}

void FilterProbe::process() {
    drain();
    write();
}

void FilterProbe::drain() {
    for (const auto& probed : pins_) {
        while (probed->pin.fetch()) {
            const auto* sample = probed->pin.take();
            if (hasFailed_) continue;
            appendSampleLine(lines_, probed->members, *sample);
            if (lines_.size() >= kBlockSize) write();
        }
    }
}

void FilterProbe::write() {
    if (lines_.empty()) return;
    std::ostream& stream = getStream();
    // The standard output may still be marked from a failure before "File Name" was changed.
    stream.clear();
    stream.write(lines_.data(), static_cast<std::streamsize>(lines_.size()));
    stream.flush();
    lines_.clear();
    if (!stream) giveUp("cannot be written");
}

std::ostream& FilterProbe::getStream() {
    const std::string path = fileName_.get();
    if (path.empty() || path == "-") return std::cout;
    if (!file_.is_open()) file_.open(toSystemPath(path), std::ios::out | std::ios::binary);
    if (!file_.is_open()) giveUp("cannot be opened for writing");
    return file_;
}

void FilterProbe::giveUp(const std::string& cause) {
    hasFailed_ = true;
    lines_.clear();
    const std::string path = fileName_.get();
    const bool isOutput = path.empty() || path == "-";
    throw Poco::IOException((isOutput ? "The standard output" : "File '" + path + "'") + " " +
                            cause);
}

}  // namespace Quoril::Core
