#pragma once

#include <string>

namespace Poco {
class Exception;
}

namespace Quoril::Core {
class AbstractProperty;
class Filter;
}  // namespace Quoril::Core

namespace Quoril::Runner {

/// What a filter said when it refused a property's text, or a command. Filters often only say that
/// a file was refused; what the system has against the file is added then: "File not valid.
/// (/data/walk.bin does not exist)".
/// @param text  the refused text
[[nodiscard]] std::string describeRefusal(const Poco::Exception& error, const Core::Filter& filter,
                                          const Core::AbstractProperty& property,
                                          const std::string& text);

}  // namespace Quoril::Runner
