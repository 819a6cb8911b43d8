#include "framework/PropertyBag.hpp"

#include "framework/Synchronizer.hpp"

#include <algorithm>
#include <utility>

#include <Poco/Exception.h>

namespace Quoril::Core {

struct PropertyBag::Impl {
    using Entry = std::pair<std::string, AbstractProperty*>;

    PropertyBagOwner& owner;
    std::vector<Entry> entries;

    [[nodiscard]] auto locate(const std::string& name) {
        return std::find_if(entries.begin(), entries.end(),
                            [&](const Entry& entry) { return entry.first == name; });
    }
};

PropertyBag::PropertyBag(PropertyBagOwner& owner) : impl_(new Impl{owner, {}}) {}
PropertyBag::~PropertyBag() = default;

void PropertyBag::registerProperty(const std::string& name, AbstractProperty& property) {
    const Synchronizer::DisablerLocker lock(getSynchronizer(), nullptr);
    if (impl_->locate(name) != impl_->entries.end())
        throw Poco::ExistsException("Property '" + name + "' is registered already");
    impl_->entries.emplace_back(name, &property);
}

void PropertyBag::unregisterProperty(const std::string& name) {
    const Synchronizer::DisablerLocker lock(getSynchronizer(), nullptr);
    const auto found = impl_->locate(name);
    if (found != impl_->entries.end()) impl_->entries.erase(found);
}

AbstractProperty* PropertyBag::find(const std::string& name) const {
    const Synchronizer::DisablerLocker lock(getSynchronizer(), nullptr);
    const auto found = impl_->locate(name);
    return found == impl_->entries.end() ? nullptr : found->second;
}

std::vector<std::string> PropertyBag::getNames() const {
    const Synchronizer::DisablerLocker lock(getSynchronizer(), nullptr);
    std::vector<std::string> names;
    names.reserve(impl_->entries.size());
    for (const auto& entry : impl_->entries)
        names.push_back(entry.first);
    return names;
}

Synchronizer* PropertyBag::getSynchronizer() const {
    return impl_->owner.getPropertySynchronizer();
}

void PropertyBag::forget(const AbstractProperty& property) noexcept {
    const Synchronizer::DisablerLocker lock(getSynchronizer(), nullptr);
    std::erase_if(impl_->entries, [&](const auto& entry) { return entry.second == &property; });
}

PropertyBagOwner::PropertyBagOwner() : bag_(*this) {}
PropertyBagOwner::~PropertyBagOwner() = default;

}  // namespace Quoril::Core
