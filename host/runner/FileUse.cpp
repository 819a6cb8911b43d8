#include "host/runner/FileUse.hpp"

#include "host/runner/PropertyText.hpp"

#include <algorithm>
#include <filesystem>

#include <Poco/Environment.h>
#include <Poco/Exception.h>
#include <Poco/Path.h>

namespace Quoril::Runner {

namespace {
namespace fs = std::filesystem;

bool isOfName(char c) {
    return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9') || c == '_';
}

/// The name of the variable behind a dollar.
std::string nameBehind(const std::string& text, std::size_t dollar) {
    const std::size_t first = dollar + 1;
    if (text[first] == '{') {
        const std::size_t end = text.find('}', first);
        return end == std::string::npos ? text.substr(first)
                                        : text.substr(first + 1, end - first - 1);
    }
    const auto end =
        std::find_if_not(text.begin() + static_cast<std::ptrdiff_t>(first), text.end(), isOfName);
    return {text.begin() + static_cast<std::ptrdiff_t>(first), end};
}

/// Filters expand variables as POCO does. What POCO drops without a word would make another file of
/// it: "$DATA/a.bin" without DATA is one in the root folder.
void requireWholeExpansion(const std::string& text) {
    if (Poco::Path::separator() != '/') return;  // the system has other variables
    for (std::size_t i = 0; i < text.size(); ++i) {
        if (text[i] == '\\' && text[++i] != '$')
            throw Poco::InvalidArgumentException(
                "a file name cannot hold a backslash; '\\$' stands for a dollar");
        if (text[i] != '$' || (i > 0 && text[i - 1] == '\\')) continue;
        const std::string name = nameBehind(text, i);
        if (!Poco::Environment::has(name))
            throw Poco::InvalidArgumentException(
                "variable '" + name + "' is not defined; write '\\$' for a dollar in a file name");
    }
}

/// Such as the standard output on its way to another program: a pipe without a name.
bool hasName(const std::string& path) {
    std::error_code error;
    const fs::path name = fs::canonical(path, error);
    return !error && !name.empty();
}

/// Why a file cannot be read again and again from its beginning; empty if nothing is known.
std::string findReadRisk(const std::string& path) {
    std::error_code error;
    switch (fs::status(path, error).type()) {
        case fs::file_type::fifo:
            return "is a pipe, which cannot be read from its beginning again";
        case fs::file_type::socket:
            return "is a socket, no file";
        case fs::file_type::character:
        case fs::file_type::block:
            return "is a device, no file";
        default:
            return "";
    }
}

std::string findWriteRisk(const std::string& path) {
    std::error_code error;
    switch (fs::status(path, error).type()) {
        case fs::file_type::fifo:
            return hasName(path) ? "is a named pipe: the flow would wait for its reader" : "";
        case fs::file_type::socket:
            return "is a socket, no file";
        case fs::file_type::block:
            return "is a disk, no file";
        default:
            return "";
    }
}
}  // namespace

void requireUsableFile(const PropertyDescription& property, const std::string& text) {
    if (property.kind != PropertyKind::kFileName || text.empty()) return;
    requireWholeExpansion(text);
    const std::string path = Poco::Path::expand(text);
    const std::string risk = property.isWrittenFile ? findWriteRisk(path) : findReadRisk(path);
    if (!risk.empty()) throw Poco::InvalidArgumentException("'" + path + "' " + risk);
}

}  // namespace Quoril::Runner
