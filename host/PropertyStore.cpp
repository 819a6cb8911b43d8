#include "host/PropertyStore.hpp"

#include "framework/AbstractProperty.hpp"
#include "framework/Filter.hpp"

#include <algorithm>
#include <exception>
#include <optional>

#include <Poco/Exception.h>

namespace Quoril::Core::PropertyStore {

namespace {

using Values = std::vector<SavedValue>;

[[nodiscard]] auto locate(Values& values, const std::string& name) {
    return std::find_if(values.begin(), values.end(),
                        [&](const SavedValue& value) { return value.name == name; });
}

/// Takes the value out that comes next; nothing when no property can be set any more.
std::optional<SavedValue> takeNext(PropertyBag& bag, Values& values) {
    for (const std::string& name : bag.getNames()) {
        const auto found = locate(values, name);
        if (found == values.end()) continue;
        const AbstractProperty* property = bag.find(name);
        if (property == nullptr || !property->getIsPersistent() || !property->getIsWritable())
            continue;
        SavedValue value = *found;
        values.erase(found);
        return value;
    }
    return std::nullopt;
}

std::optional<Problem> setValue(PropertyBag& bag, const SavedValue& value) {
    try {
        bag.find(value.name)->deSerialize(value.text);
        return std::nullopt;
    } catch (const Poco::Exception& error) {
        return Problem{value.name, error.displayText()};
    } catch (const std::exception& error) {
        return Problem{value.name, error.what()};
    } catch (...) {
        return Problem{value.name, "unknown error"};
    }
}

}  // namespace

Values save(Filter& filter) {
    const Synchronizer::DisablerLocker lock(filter.getSynchronizer(), nullptr);
    Values values;
    const PropertyBag& bag = *filter.getPropertyBag();
    for (const std::string& name : bag.getNames()) {
        const AbstractProperty* property = bag.find(name);
        if (!property->getIsPersistent()) continue;
        values.push_back({name, {}});
        property->serialize(values.back().text);
    }
    return values;
}

std::vector<Problem> restore(Filter& filter, const Values& values) {
    const Synchronizer::DisablerLocker lock(filter.getSynchronizer(), nullptr);
    std::vector<Problem> problems;
    PropertyBag& bag = *filter.getPropertyBag();
    Values rest = values;
    while (const auto value = takeNext(bag, rest))
        if (auto problem = setValue(bag, *value)) problems.push_back(std::move(*problem));
    for (const SavedValue& value : rest)
        if (bag.find(value.name) == nullptr) problems.push_back({value.name, "No such property"});
    return problems;
}

}  // namespace Quoril::Core::PropertyStore
