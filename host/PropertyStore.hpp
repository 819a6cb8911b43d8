#pragma once

#include "framework/Export.hpp"

#include <string>
#include <vector>

namespace Quoril::Core {

class Filter;

/// Saves and restores the values of a filter's properties as text.
namespace PropertyStore {

struct SavedValue {
    std::string name;
    std::string text;
    bool operator==(const SavedValue&) const = default;
};

struct Problem {
    std::string name;
    std::string text;
};

/// The persistent properties, in the order of registration.
QUORIL_CORE_API std::vector<SavedValue> save(Filter& filter);

/// Sets the saved values in the order of registration, looking at the list anew after each one:
/// a value may bring further properties, or make them writable. Values of properties that stay
/// read-only, or that are not persistent, are left out: switches never start by a restore.
/// @return what properties refused, and names that never appeared
[[nodiscard]] QUORIL_CORE_API std::vector<Problem> restore(Filter& filter,
                                                           const std::vector<SavedValue>& values);

}  // namespace PropertyStore
}  // namespace Quoril::Core
