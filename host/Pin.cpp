#include "framework/Pin.hpp"

#include "framework/PinManager.hpp"

namespace Quoril::Core {

Pin::Pin(const std::string& name, PinManager* manager) : NamedObject(name), manager_(manager) {}
Pin::~Pin() = default;

Synchronizer* Pin::getSynchronizer() const {
    return manager_ == nullptr ? nullptr : manager_->getSynchronizer();
}

unsigned Pin::getWaitingCount() const {
    return 0;
}

}  // namespace Quoril::Core
