#pragma once

#include "framework/Export.hpp"

#include <memory>
#include <string>
#include <vector>

namespace Quoril::Core {

class AbstractProperty;
class Synchronizer;
class PropertyBagOwner;

/// The properties of a filter that users see, by name, in the order of registration.
///
/// The bag owns nothing. It may change while a setter of one of its properties runs: a filter
/// re-registers properties to keep their order.
class QUORIL_CORE_API PropertyBag {
 public:
    explicit PropertyBag(PropertyBagOwner& owner);
    ~PropertyBag();
    PropertyBag(const PropertyBag&) = delete;
    PropertyBag& operator=(const PropertyBag&) = delete;

    /// Makes the property visible, as the last one.
    /// @throws Poco::ExistsException if the name is taken
    void registerProperty(const std::string& name, AbstractProperty& property);

    /// Withdraws the property of that name; an unknown name is ignored.
    void unregisterProperty(const std::string& name);

    /// The property of that name, or null.
    [[nodiscard]] AbstractProperty* find(const std::string& name) const;

    /// The names in order of registration, a copy.
    [[nodiscard]] std::vector<std::string> getNames() const;

    [[nodiscard]] Synchronizer* getSynchronizer() const;

    /// Withdraws a property that is about to be destroyed, under whatever name.
    void forget(const AbstractProperty& property) noexcept;

 private:
    struct Impl;
    std::unique_ptr<Impl> impl_;
};

/// Base of objects with properties.
class QUORIL_CORE_API PropertyBagOwner {
 public:
    PropertyBagOwner();
    virtual ~PropertyBagOwner();
    PropertyBagOwner(const PropertyBagOwner&) = delete;
    PropertyBagOwner& operator=(const PropertyBagOwner&) = delete;

    [[nodiscard]] PropertyBag* getPropertyBag() noexcept { return &bag_; }
    [[nodiscard]] const PropertyBag* getPropertyBag() const noexcept { return &bag_; }

    /// The synchronizer under which the owner's properties are read and written.
    [[nodiscard]] virtual Synchronizer* getPropertySynchronizer() = 0;

 private:
    PropertyBag bag_;
};

}  // namespace Quoril::Core
