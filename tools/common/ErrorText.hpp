#pragma once

#include <string>

#include <Poco/Exception.h>

namespace SensorFileTool {

/// What went wrong, in one line: the exception's message, its kind only where that tells what the
/// message (often a bare path) does not, and the cause that it carries with it.
[[nodiscard]] inline std::string describeError(const Poco::Exception& error) {
    const bool isOfFile = dynamic_cast<const Poco::FileException*>(&error) != nullptr;
    std::string text = error.message();
    if (text.empty())
        text = error.name();
    else if (isOfFile)
        text += std::string(": ") + error.name();
    if (error.nested() != nullptr) text += ": " + describeError(*error.nested());
    return text;
}

}  // namespace SensorFileTool
