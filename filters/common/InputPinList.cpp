#include "filters/common/InputPinList.hpp"

#include <utility>

#include <Poco/Exception.h>

namespace Filters {

InputPinList::InputPinList(Quoril::Core::Filter& filter, Kind kind)
    : filter_(filter), kind_(std::move(kind)) {}

void InputPinList::resize(std::size_t count) {
    while (pins_.size() < count)
        append();
    while (pins_.size() > count)
        pins_.pop_back();
}

void InputPinList::append() {
    const std::string number = std::to_string(pins_.size() + 1);
    const InputPinMva::Names names{kind_.prefixes.pin + number, kind_.prefixes.columnNames + number,
                                   kind_.prefixes.columnType + number};
    pins_.push_back(std::make_unique<InputPinMva>(filter_, names, kind_.types, kind_.buffer));
}

void InputPinList::show() {
    for (const auto& pin : pins_)
        pin->show();
}

void InputPinList::setIsWritable(bool isWritable) {
    for (const auto& pin : pins_)
        pin->setIsWritable(isWritable);
}

void InputPinList::requireNames() const {
    for (const auto& pin : pins_) {
        const auto& names = pin->getColumnNames();
        if (names.get().empty()) throw Poco::IOException(names.getName() + " is empty!");
    }
}

}  // namespace Filters
