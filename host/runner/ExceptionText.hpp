#pragma once

#include <string>

#include <Poco/Exception.h>

namespace Quoril::Runner {

/// The message of an exception; its kind if it has none.
[[nodiscard]] inline std::string describeException(const Poco::Exception& error) {
    return error.message().empty() ? error.name() : error.message();
}

}  // namespace Quoril::Runner
