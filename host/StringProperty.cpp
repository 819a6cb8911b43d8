#include "framework/StringProperty.hpp"

#include <Poco/Path.h>

namespace Quoril::Core {

StringProperty::StringProperty(const std::string& name, PropertyBag* bag)
    : ValueProperty<std::string>(name, bag) {}
StringProperty::~StringProperty() = default;

void StringProperty::accept(Util::System::AbstractVisitor& visitor) const {
    if (!visitAs(*this, visitor)) ValueProperty<std::string>::accept(visitor);
}

void StringProperty::serialize(std::string& text) const {
    text = ValueProperty<std::string>::get();
}

void StringProperty::deSerialize(const std::string& text) const {
    // Restoring a value changes the property although the host holds it as constant.
    const_cast<StringProperty*>(this)->set(text);
}

void StringProperty::validate(const std::string& value) const {
    ValueProperty<std::string>::validate(value);
}

std::string StringProperty::get() const {
    const Synchronizer::DisablerLocker lock(getSynchronizer(), nullptr);
    const std::string text = ValueProperty<std::string>::get();
    return expandVariables_ ? Poco::Path::expand(text) : text;
}

void StringProperty::setExpandVariables(bool expand) {
    const Synchronizer::DisablerLocker lock(getSynchronizer(), nullptr);
    expandVariables_ = expand;
    notifyAttributeChanged();
}

}  // namespace Quoril::Core
