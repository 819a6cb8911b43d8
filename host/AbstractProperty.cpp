#include "framework/AbstractProperty.hpp"

#include "framework/PropertyBag.hpp"
#include "framework/Synchronizer.hpp"

#include <algorithm>
#include <exception>
#include <vector>

namespace Quoril::Core {

struct AbstractProperty::Impl {
    PropertyBag* bag = nullptr;
    Util::System::Functor<void> plainCallback;
    std::vector<PropertyObserver*> observers;

    /// Tells every observer; they may come and go meanwhile.
    template <class Tell>
    void tellObservers(Tell tell) const {
        const std::vector<PropertyObserver*> told = observers;
        for (PropertyObserver* observer : told)
            if (std::find(observers.begin(), observers.end(), observer) != observers.end())
                tell(*observer);
    }
};

AbstractProperty::AbstractProperty(const std::string& name, PropertyBag* bag)
    : NamedObject(name), impl_(std::make_unique<Impl>()) {
    impl_->bag = bag;
}

AbstractProperty::~AbstractProperty() {
    if (impl_->bag != nullptr) impl_->bag->forget(*this);
}

void AbstractProperty::accept(Util::System::AbstractVisitor& visitor) const {
    DefaultPropertyCatchAll::onUnknownVisitor(*this, visitor);
}

Synchronizer* AbstractProperty::getSynchronizer() const {
    return impl_->bag == nullptr ? nullptr : impl_->bag->getSynchronizer();
}

void AbstractProperty::attachHandler(const PlainHandler& handler) {
    const Synchronizer::DisablerLocker lock(getSynchronizer(), nullptr);
    impl_->plainCallback.assign(handler);
}

void AbstractProperty::addObserver(PropertyObserver& observer) {
    const Synchronizer::DisablerLocker lock(getSynchronizer(), nullptr);
    impl_->observers.push_back(&observer);
}

void AbstractProperty::removeObserver(PropertyObserver& observer) {
    const Synchronizer::DisablerLocker lock(getSynchronizer(), nullptr);
    std::erase(impl_->observers, &observer);
}

bool AbstractProperty::hasObservers() const {
    return impl_->plainCallback.isSet() || !impl_->observers.empty();
}

void AbstractProperty::notifyAttributeChanged() const {
    impl_->tellObservers([this](PropertyObserver& observer) { observer.attributeChanged(*this); });
}

void AbstractProperty::notifyValueChanged() const {
    // The value is stored already, so the observers hear of it whatever the callback says.
    std::exception_ptr refusal;
    try {
        impl_->plainCallback.call();
    } catch (...) {
        refusal = std::current_exception();
    }
    impl_->tellObservers([this](PropertyObserver& observer) { observer.valueChanged(*this); });
    if (refusal) std::rethrow_exception(refusal);
}

AbstractProperty::ScopedChangeValueNotifier::ScopedChangeValueNotifier(
    const AbstractProperty* property, bool changed)
    : property_(property), changed_(changed), exceptionsAtStart_(std::uncaught_exceptions()) {}

AbstractProperty::ScopedChangeValueNotifier::~ScopedChangeValueNotifier() noexcept(false) {
    // An exception on its way means that the store failed: there is no change to tell of.
    if (changed_ && std::uncaught_exceptions() == exceptionsAtStart_)
        property_->notifyValueChanged();
}

}  // namespace Quoril::Core
