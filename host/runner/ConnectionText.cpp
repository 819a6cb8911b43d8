#include "host/runner/ConnectionText.hpp"

#include "host/runner/Names.hpp"
#include "host/runner/NumberText.hpp"

#include <Poco/Exception.h>
#include <Poco/String.h>
#include <fmt/format.h>

namespace Quoril::Runner {

namespace {
constexpr unsigned kLargestBuffer = 1000000;

void takeSetting(ConnectionEntry& connection, const std::string& setting) {
    const std::size_t colon = setting.find(':');
    const std::string key = Poco::trim(setting.substr(0, colon));
    if (colon == std::string::npos)
        throw Poco::DataFormatException("setting '" + key +
                                        "' has no value; write e.g. buffer: 64");
    const std::string value = Poco::trim(setting.substr(colon + 1));
    if (key == "buffer")
        connection.bufferSize = parseBufferSize(value);
    else if (key == "lifo")
        connection.isLifo = parseTruth(value);
    else
        throw Poco::DataFormatException("unknown setting '" + key + "' of a connection" +
                                        suggestName(key, {"buffer", "lifo"}));
}

/// @param text  what stands between the braces
void takeSettings(ConnectionEntry& connection, const std::string& text) {
    for (std::size_t begin = 0; begin <= text.size();) {
        const std::size_t end = std::min(text.find(',', begin), text.size());
        takeSetting(connection, text.substr(begin, end - begin));
        begin = end + 1;
    }
}
}  // namespace

MemberName parseMemberName(const Text& text) {
    const std::size_t dot = text.text.find('.');
    if (dot == std::string::npos || dot == 0 || dot + 1 == text.text.size())
        throw Poco::DataFormatException("'" + text.text + "' is not of the form filter.name");
    return {text.text.substr(0, dot), text.text.substr(dot + 1), text.place};
}

ConnectionEntry parseConnection(const Text& text) {
    const std::size_t arrow = text.text.find("->");
    if (arrow == std::string::npos)
        throw Poco::DataFormatException("'" + text.text +
                                        "' is not of the form filter.pin -> filter.pin");
    const std::string from = Poco::trim(text.text.substr(0, arrow));
    std::string to = Poco::trim(text.text.substr(arrow + 2));
    ConnectionEntry connection;
    // A blank must stand before the brace, so that pins may have braces in their names.
    const std::size_t brace = to.rfind(" {");
    if (brace != std::string::npos && to.back() == '}') {
        takeSettings(connection, to.substr(brace + 2, to.size() - brace - 3));
        to = Poco::trim(to.substr(0, brace));
    }
    connection.from = parseMemberName({from, text.place});
    connection.to = parseMemberName({to, text.place});
    return connection;
}

unsigned parseBufferSize(const std::string& text) {
    const auto size = parseNumber<unsigned>(text);
    if (!size || *size == 0 || *size > kLargestBuffer)
        throw Poco::DataFormatException(
            fmt::format("buffer '{}' is not a number from 1 to {}", text, kLargestBuffer));
    return *size;
}

bool parseTruth(const std::string& text) {
    const std::string lower = Poco::toLower(text);
    if (lower == "true") return true;
    if (lower == "false") return false;
    throw Poco::DataFormatException("'" + text + "' is not true or false");
}

}  // namespace Quoril::Runner
