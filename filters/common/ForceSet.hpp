#pragma once

#include "framework/Synchronizer.hpp"
#include "framework/ValueProperty.hpp"

#include <exception>

namespace Filters {

/// Makes a property writable for its scope, then puts the flag back; observers are told of both.
template <class T>
class ScopedWritable {
 public:
    explicit ScopedWritable(Quoril::Core::ValueProperty<T>& property)
        : property_(property), wasWritable_(property.getIsWritable()) {
        property_.setIsWritable(true);
    }
    ~ScopedWritable() { property_.setIsWritable(wasWritable_); }
    ScopedWritable(const ScopedWritable&) = delete;
    ScopedWritable& operator=(const ScopedWritable&) = delete;

 private:
    Quoril::Core::ValueProperty<T>& property_;
    const bool wasWritable_;
};

/// Sets a property that users may not change now. Its callbacks run as in every set.
/// @throws whatever a callback throws; the flag is put back then too
template <class T>
void forceSet(Quoril::Core::ValueProperty<T>& property, const T& value) {
    const Quoril::Core::Synchronizer::DisablerLocker lock(property.getSynchronizer(), nullptr);
    const ScopedWritable<T> writable(property);
    property.set(value);
}

/// Sets a property after a processing call's work, where nothing may get out.
template <class T>
void forceSetQuietly(Quoril::Core::ValueProperty<T>& property, const T& value) noexcept {
    try {
        forceSet(property, value);
    } catch (const std::exception&) {
        // Refused by a callback or an observer: the property keeps its value, and the call's work
        // has been done all the same.
    }
}

}  // namespace Filters
