#include "framework/AbstractInputPin.hpp"

#include "framework/AbstractOutputPin.hpp"
#include "framework/PinManager.hpp"
#include "host/Topology.hpp"

#include <vector>

#include <Poco/Exception.h>

namespace Quoril::Core {

namespace {

const LayoutManager* layoutOf(const Pin& pin) {
    const PinManager* filter = pin.getManager();
    return filter == nullptr ? nullptr : filter->getManager();
}

}  // namespace

AbstractInputPin::AbstractInputPin(const std::string& name, PinManager* manager)
    : Pin(name, manager) {
    const Synchronizer::DisablerLocker lock(getSynchronizer(), nullptr);
    if (manager != nullptr) manager->inputPins_.push_back(this);
    Topology::markChanged();
}

AbstractInputPin::~AbstractInputPin() {
    const Synchronizer::DisablerLocker lock(getSynchronizer(), nullptr);
    if (getManager() != nullptr) std::erase(getManager()->inputPins_, this);
    Topology::markChanged();
}

bool AbstractInputPin::getIsSynchronous() const {
    if (outputPin_ == nullptr) return false;
    const LayoutManager* here = layoutOf(*this);
    return here == layoutOf(*outputPin_) && (here != nullptr || isDirect_);
}

void AbstractInputPin::setIsBlocking(bool isBlocking) {
    const Synchronizer::DisablerLocker own(getSynchronizer(), nullptr);
    if (isBlocking == isBlocking_) return;
    const Synchronizer::DisablerLocker both(
        outputPin_ == nullptr ? nullptr : outputPin_->getSynchronizer(), getSynchronizer());
    rebuildWith(isBlocking_, isBlocking);
}

void AbstractInputPin::setBuffer(const BufferSettings& settings) {
    if (settings.size == 0)
        throw Poco::InvalidArgumentException("The buffer of pin '" + getName() +
                                             "' cannot have size 0");
    // First the own side, under which the connection stays as it is.
    const Synchronizer::DisablerLocker own(getSynchronizer(), nullptr);
    const Synchronizer::DisablerLocker both(
        outputPin_ == nullptr ? nullptr : outputPin_->getSynchronizer(), getSynchronizer());
    rebuildWith(settings_, settings);
    isBufferChosen_ = true;
    Topology::markChanged();
}

template <class Setting>
void AbstractInputPin::rebuildWith(Setting& setting, const Setting& value) {
    const Setting before = setting;
    setting = value;
    try {
        rebuildBufferStrategy();
    } catch (...) {
        setting = before;
        throw;
    }
}

PinCounters AbstractInputPin::getCounters() const noexcept {
    return {.pushed = pushed_.load(std::memory_order_relaxed),
            .taken = taken_.load(std::memory_order_relaxed),
            .overwritten = overwritten_.load(std::memory_order_relaxed),
            .cleared = cleared_.load(std::memory_order_relaxed)};
}

void AbstractInputPin::storeConnection(AbstractOutputPin* outputPin, bool isDirect) noexcept {
    outputPin_ = outputPin;
    isDirect_ = isDirect;
    Topology::markChanged();
}

}  // namespace Quoril::Core
