#include "framework/AbstractOutputPin.hpp"

#include "framework/AbstractInputPin.hpp"
#include "framework/PinManager.hpp"
#include "host/Topology.hpp"

namespace Quoril::Core {

AbstractOutputPin::AbstractOutputPin(const std::string& name, PinManager* manager)
    : Pin(name, manager) {
    const Synchronizer::DisablerLocker lock(getSynchronizer(), nullptr);
    if (manager != nullptr) manager->outputPins_.push_back(this);
    Topology::markChanged();
}

AbstractOutputPin::~AbstractOutputPin() {
    const Synchronizer::DisablerLocker lock(getSynchronizer(), nullptr);
    if (getManager() != nullptr) std::erase(getManager()->outputPins_, this);
    Topology::markChanged();
}

void AbstractOutputPin::notifyAttached(AbstractInputPin& input, bool& isDirect) {
    // Filters without a layout are driven by whoever made them, on one thread.
    const auto hasLayout = [](const Pin& pin) {
        return pin.getManager() != nullptr && pin.getManager()->getManager() != nullptr;
    };
    if (hasLayout(*this) || hasLayout(input)) isDirect = false;
}

void AbstractOutputPin::notifyDetached(AbstractInputPin& /*input*/) {
    // The host follows connections by their topology version; nothing is kept for one of them.
}

}  // namespace Quoril::Core
