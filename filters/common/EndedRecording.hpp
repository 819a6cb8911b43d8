#pragma once

#include "framework/Filter.hpp"

#include <exception>
#include <string>

namespace Filters {

/// Logs why a recording ended by itself, as framework/ErrorLog.hpp says. To be called without the
/// filter's mutex: a host's log may do anything.
/// @param file  as its property says it
/// @param error  what ended the recording; not null
void logEndedRecording(const Quoril::Core::Filter& filter, const std::string& file,
                       const std::exception_ptr& error) noexcept;

}  // namespace Filters
