#pragma once

#include <string>

#include <Poco/Error.h>
#include <Poco/Exception.h>

namespace Quoril::Runner {

/// The message of an exception; its kind if it has none.
[[nodiscard]] inline std::string describeException(const Poco::Exception& error) {
    return error.message().empty() ? error.name() : error.message();
}

/// What the system said when a file was refused, without the path; the message if it said nothing.
[[nodiscard]] inline std::string describeCause(const Poco::FileException& error) {
    return error.code() == 0 ? describeException(error) : Poco::Error::getMessage(error.code());
}

}  // namespace Quoril::Runner
