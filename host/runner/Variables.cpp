#include "host/runner/Variables.hpp"

#include <cstdlib>
#include <string_view>

#include <Poco/Exception.h>

namespace Quoril::Runner {

namespace {
// A long variable that stands a hundred thousand times would fill the memory.
constexpr std::size_t kLongestText = std::size_t{8} << 20U;

bool isVariableName(std::string_view name) {
    constexpr std::string_view kDigits = "0123456789";
    constexpr std::string_view kAllowed =
        "abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ_0123456789";
    return !name.empty() && kDigits.find(name[0]) == std::string_view::npos &&
           name.find_first_not_of(kAllowed) == std::string_view::npos;
}

/// @param inner  what stands between the braces
std::string expandOne(const std::string& inner, const VariableLookup& lookUp) {
    const std::size_t separator = inner.find(":-");
    const std::string name = inner.substr(0, separator);
    if (!isVariableName(name))
        throw Poco::DataFormatException("'" + name + "' is not the name of a variable");
    const std::optional<std::string> value = lookUp(name);
    if (separator == std::string::npos) {
        if (!value)
            throw Poco::DataFormatException("variable '" + name +
                                            "' is not defined and has no default");
        return *value;
    }
    const std::string fallback = inner.substr(separator + 2);
    if (fallback.find("${") != std::string::npos)
        throw Poco::DataFormatException("the default of variable '" + name +
                                        "' cannot hold another variable");
    return value && !value->empty() ? *value : fallback;
}
}  // namespace

std::optional<std::string> lookUpEnvironment(const std::string& name) {
    // NOLINTNEXTLINE(concurrency-mt-unsafe): nothing in this program changes the environment
    const char* value = std::getenv(name.c_str());
    if (value == nullptr) return std::nullopt;
    return value;
}

std::string expandVariables(const std::string& text, const VariableLookup& lookUp) {
    std::string expanded;
    std::size_t done = 0;
    for (std::size_t dollar = text.find('$'); dollar != std::string::npos;
         dollar = text.find('$', done)) {
        expanded.append(text, done, dollar - done);
        const char next = dollar + 1 < text.size() ? text[dollar + 1] : '\0';
        if (next != '{') {
            expanded += '$';
            done = dollar + (next == '$' ? 2 : 1);
            continue;
        }
        const std::size_t end = text.find('}', dollar);
        if (end == std::string::npos)
            throw Poco::DataFormatException("'${' without '}' (write '$$' for a dollar)");
        expanded += expandOne(text.substr(dollar + 2, end - dollar - 2), lookUp);
        if (expanded.size() > kLongestText)
            throw Poco::DataFormatException("with its variables replaced, the text is too long");
        done = end + 1;
    }
    return expanded.append(text, done, std::string::npos);
}

}  // namespace Quoril::Runner
