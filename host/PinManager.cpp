#include "framework/PinManager.hpp"

#include "framework/AbstractInputPin.hpp"
#include "framework/AbstractOutputPin.hpp"

#include <algorithm>

namespace Quoril::Core {

namespace {

template <class SomePin>
SomePin* findPin(const std::vector<SomePin*>& pins, const std::string& name) {
    const auto found = std::find_if(pins.begin(), pins.end(),
                                    [&](const SomePin* pin) { return pin->getName() == name; });
    return found == pins.end() ? nullptr : *found;
}

}  // namespace

PinManager::PinManager(const std::string& name) : NamedObject(name) {}
PinManager::~PinManager() = default;

Synchronizer* PinManager::getSynchronizer() {
    return &synchronizer_;
}

AbstractInputPin* PinManager::findInputPin(const std::string& name) const {
    return findPin(inputPins_, name);
}

AbstractOutputPin* PinManager::findOutputPin(const std::string& name) const {
    return findPin(outputPins_, name);
}

}  // namespace Quoril::Core
