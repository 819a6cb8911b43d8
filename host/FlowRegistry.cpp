#include "host/FlowRegistry.hpp"

#include "host/EditGate.hpp"

namespace Quoril::Core {

FlowRegistry& FlowRegistry::instance() {
    static auto* const registry = new FlowRegistry();
    return *registry;
}

void FlowRegistry::add(FilterOwner& owner) {
    const EditGate gate;
    owners_.push_back(&owner);
}

void FlowRegistry::remove(FilterOwner& owner) {
    const EditGate gate;
    std::erase(owners_, &owner);
}

void FlowRegistry::removeFiltersOf(const std::vector<AbstractFilterFactory*>& factories) {
    const EditGate gate;
    for (FilterOwner* owner : owners_)
        owner->removeFiltersOf(factories);
}

}  // namespace Quoril::Core
