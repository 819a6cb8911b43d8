#include "host/runner/FileCause.hpp"

#include "framework/AbstractProperty.hpp"
#include "framework/Filter.hpp"
#include "host/runner/ExceptionText.hpp"
#include "host/runner/FilterPath.hpp"
#include "host/runner/Platform.hpp"
#include "host/runner/PropertyText.hpp"

#include <Poco/Exception.h>
#include <fmt/format.h>

namespace Quoril::Runner {

namespace {
// Less than a block of any file system: what did not fit left no more.
constexpr std::uint64_t kAlmostNothing = 4096;

/// Refusals of texts and names have nothing to do with files.
bool canComeFromAFile(const Poco::Exception& error) {
    const bool isMistake = dynamic_cast<const Poco::DataFormatException*>(&error) != nullptr;
    return dynamic_cast<const Poco::IOException*>(&error) != nullptr ||
           (dynamic_cast<const Poco::DataException*>(&error) != nullptr && !isMistake);
}

std::string findWriteCause(const std::string& path) {
    const std::string error = findWriteError(path);
    return error.empty() ? findFullDisk(path, kAlmostNothing) : error;
}

/// The message with what is wrong with the file; the message alone if it says so already, or if
/// nothing is wrong.
std::string addCause(const std::string& message, const std::string& file, bool isWritten) {
    if (file.empty()) return message;
    const std::string path = toFilterPath(file);
    const std::string cause = isWritten ? findWriteCause(path) : findReadObstacle(path);
    if (cause.empty()) return message;
    // The words of the system, without ours before them.
    const std::size_t colon = cause.rfind(": ");
    const std::string words = colon == std::string::npos ? cause : cause.substr(colon + 2);
    if (message.find(words) != std::string::npos) return message;
    const bool isNamed = message.find(path) != std::string::npos;
    return isNamed ? fmt::format("{} ({})", message, cause)
                   : fmt::format("{} ({} {})", message, path, cause);
}
}  // namespace

std::string describeRefusal(const Poco::Exception& error, const Core::Filter& filter,
                            const Core::AbstractProperty& property, const std::string& text) {
    std::string message = describeException(error);
    if (!canComeFromAFile(error)) return message;
    const PropertyDescription refused = describeProperty(property);
    if (refused.kind == PropertyKind::kFileName)
        return addCause(message, text, refused.isWrittenFile);
    // A switch or a command: it is about the files that the filter was told before.
    for (const std::string& name : filter.getPropertyBag()->getNames()) {
        const Core::AbstractProperty* other = filter.getPropertyBag()->find(name);
        if (other == nullptr) continue;
        const PropertyDescription file = describeProperty(*other);
        if (file.kind != PropertyKind::kFileName) continue;
        std::string explained = addCause(message, file.value, file.isWrittenFile);
        if (explained != message) return explained;
    }
    return message;
}

}  // namespace Quoril::Runner
