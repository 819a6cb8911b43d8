#include "tests/stress/Options.hpp"

#include <map>

#include <Poco/Exception.h>
#include <Poco/NumberParser.h>

namespace Stress {

namespace {

Sabotage parseSabotage(const std::string& text) {
    static const std::map<std::string, Sabotage> kNames{
        {"deadlock", Sabotage::kDeadlock}, {"lost-sample", Sabotage::kLostSample},
        {"lost-row", Sabotage::kLostRow},  {"torn-row", Sabotage::kTornRow},
        {"leak", Sabotage::kLeak},
    };
    const auto found = kNames.find(text);
    if (found == kNames.end()) throw Poco::InvalidArgumentException("no sabotage " + text);
    return found->second;
}

std::chrono::seconds parseSeconds(const std::string& text) {
    return std::chrono::seconds(Poco::NumberParser::parseUnsigned(text));
}

}  // namespace

Options parseOptions(const std::vector<std::string>& arguments) {
    Options options;
    if (arguments.size() % 2 != 0) throw Poco::InvalidArgumentException("every option has a value");
    for (std::size_t i = 0; i < arguments.size(); i += 2) {
        const std::string& name = arguments[i];
        const std::string& value = arguments[i + 1];
        if (name == "--seed")
            options.seed = Poco::NumberParser::parseUnsigned64(value);
        else if (name == "--seconds")
            options.duration = parseSeconds(value);
        else if (name == "--patience")
            options.patience = parseSeconds(value);
        else if (name == "--sabotage")
            options.sabotage = parseSabotage(value);
        else
            throw Poco::InvalidArgumentException("no option " + name);
    }
    return options;
}

}  // namespace Stress
