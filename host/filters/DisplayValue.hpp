#pragma once

#include "framework/ValueProperty.hpp"

namespace Quoril::Core {

/// Gives a value to a property that users cannot edit.
template <class T>
void setDisplayValue(ValueProperty<T>& property, const T& value) {
    const Synchronizer::DisablerLocker lock(property.getSynchronizer(), nullptr);
    struct Guard {
        ValueProperty<T>& property;
        explicit Guard(ValueProperty<T>& guarded) : property(guarded) {
            property.setIsWritable(true);
        }
        ~Guard() { property.setIsWritable(false); }
        Guard(const Guard&) = delete;
        Guard& operator=(const Guard&) = delete;
    };
    const Guard guard(property);
    property.set(value);
}

}  // namespace Quoril::Core
