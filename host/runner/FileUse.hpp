#pragma once

#include <string>

namespace Quoril::Runner {

struct PropertyDescription;

/// Filters read and write files on the threads of the flow, and wait there as long as the system
/// makes them: for ever at a named pipe at whose other end nobody is.
/// @param text  the value that the property is to get
/// @throws Poco::InvalidArgumentException if the property is the name of a file and not all of its
///         variables are defined, or a file that is read is neither a regular one nor missing, or
///         one that is written is a named pipe, a socket or a disk; the text tells the cause
void requireUsableFile(const PropertyDescription& property, const std::string& text);

}  // namespace Quoril::Runner
