#include "filters/common/InputPinMva.hpp"

namespace Filters {

InputPinMva::InputPinMva(Quoril::Core::Filter& filter, const Names& names,
                         const std::vector<std::string>& types,
                         const Quoril::Core::BufferSettings& buffer)
    : bag_(*filter.getPropertyBag()),
      pin_(names.pin, &filter),
      names_(names.columnNames, &bag_),
      type_(names.columnType, &bag_) {
    type_.setEntries(types);
    pin_.setIsBlocking(false);
    pin_.setBuffer(buffer);
}

InputPinMva::~InputPinMva() {
    bag_.unregisterProperty(names_.getName());
    bag_.unregisterProperty(type_.getName());
}

void InputPinMva::show() {
    showLast(bag_, names_);
    showLast(bag_, type_);
}

void InputPinMva::setIsWritable(bool isWritable) {
    names_.setIsWritable(isWritable);
    type_.setIsWritable(isWritable);
}

void showLast(Quoril::Core::PropertyBag& bag, Quoril::Core::AbstractProperty& property) {
    bag.unregisterProperty(property.getName());
    bag.registerProperty(property.getName(), property);
}

}  // namespace Filters
