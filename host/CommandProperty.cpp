#include "framework/CommandProperty.hpp"

#include "framework/Synchronizer.hpp"

#include <Poco/Exception.h>

namespace Quoril::Core {

CommandProperty::CommandProperty(const std::string& name, PropertyBag* bag)
    : AbstractProperty(name, bag) {}
CommandProperty::~CommandProperty() = default;

void CommandProperty::accept(Util::System::AbstractVisitor& visitor) const {
    if (!visitAs(*this, visitor)) AbstractProperty::accept(visitor);
}

bool CommandProperty::getIsWritable() const {
    const Synchronizer::DisablerLocker lock(getSynchronizer(), nullptr);
    return isWritable_;
}
bool CommandProperty::getIsPersistent() const {
    return false;
}
void CommandProperty::serialize(std::string& text) const {
    text.clear();
}
void CommandProperty::deSerialize(const std::string& /*text*/) const {}
void CommandProperty::setAny(const Poco::Any& /*value*/) {
    trigger();
}
Poco::Any CommandProperty::getAny() const {
    return {};
}

void CommandProperty::trigger() {
    const Synchronizer::DisablerLocker lock(getSynchronizer(), nullptr);
    if (!isWritable_)
        throw Poco::NoPermissionException("Property '" + getName() + "' is not writable");
    const ScopedChangeValueNotifier notifier(this, true);
}

void CommandProperty::setIsWritable(bool isWritable) {
    const Synchronizer::DisablerLocker lock(getSynchronizer(), nullptr);
    isWritable_ = isWritable;
    notifyAttributeChanged();
}

}  // namespace Quoril::Core
