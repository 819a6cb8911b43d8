#include "tests/stress/StressFilters.hpp"

#include "framework/FilterFactory.hpp"
#include "tests/stress/Platform.hpp"
#include "tests/stress/Watchdog.hpp"

namespace Stress {

NumberSource::NumberSource(const std::string& name)
    : Filter(name, true), one_("one", this), three_("three", this), row_("row", this) {
    one_.getValue().setZero(1, 1);
    three_.getValue().setZero(3, 1);
    row_.getValue().setZero(1, 3);
}

NumberSource::~NumberSource() = default;

void NumberSource::process() {
    const auto number = static_cast<double>(next_++);
    for (MatrixOutput* output : {&one_, &three_, &row_}) {
        output->getValue().setConstant(number);
        output->push(number / kRate);
    }
}

std::optional<double> NumberSource::getNextDueTime() const {
    return static_cast<double>(next_) / kRate;
}

Pulse::Pulse(const std::string& name) : Filter(name, true) {}
Pulse::~Pulse() = default;

void Pulse::process() {
    if (beat_ == nullptr) return;
    thread_local bool isNamed = false;
    if (!isNamed) nameThisThread(beat_->getName());
    isNamed = true;
    beat_->tick();
}

Passer::Passer(const std::string& name)
    : Filter(name, true), input_(kInputPin, this), output_("output", this) {
    input_.setBuffer({.size = 16, .isLifo = false});
}

Passer::~Passer() = default;

void Passer::process() {
    if (!input_.fetch()) return;
    const auto* sample = input_.take();
    output_.getValue() = sample->value;
    output_.push(sample->timeStamp);
}

StressPlugin::StressPlugin() : DefaultPlugin("Stress", "1.0.0") {
    using Quoril::Core::ComponentVersion;
    using Quoril::Core::FilterFactory;
    const ComponentVersion version(getVersion());
    addFilterFactory(std::make_unique<FilterFactory<NumberSource>>(getName(), version));
    addFilterFactory(std::make_unique<FilterFactory<Pulse>>(getName(), version));
    addFilterFactory(std::make_unique<FilterFactory<Passer>>(getName(), version));
}

StressPlugin::~StressPlugin() = default;

}  // namespace Stress
