#pragma once

#include "framework/Filter.hpp"

#include <cstddef>
#include <string>

namespace Quoril::Core {
class AbstractOutputPin;
}

namespace Stress {

/// A property as text, as it is saved. Under the filter's synchronizer.
[[nodiscard]] std::string textOf(const Quoril::Core::Filter& filter, const std::string& property);

/// Elements of the samples of an output pin, as long as the pin lives; 0 if that is not certain.
/// Takes the pin's synchronizer: for edits.
[[nodiscard]] std::size_t sampleSizeOf(const Quoril::Core::AbstractOutputPin& output);

}  // namespace Stress
