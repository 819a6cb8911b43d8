#pragma once

#include <cerrno>
#include <ostream>

#include <Poco/Exception.h>

namespace SensorFileTool {

/// To be called right behind writing.
/// @throws Poco::IOException with the system's error number as its code
inline void requireGood(const std::ostream& output) {
    if (!output) throw Poco::IOException("the standard output cannot be written", errno);
}

/// Whoever closes a pipe early, as head does, has got what was wanted.
[[nodiscard]] inline bool isPipeClosed(const Poco::IOException& error) {
    return error.code() == EPIPE;
}

}  // namespace SensorFileTool
