#include "filters/common/NameList.hpp"

#include <Poco/StringTokenizer.h>

namespace Filters {

std::vector<std::string> splitNames(const std::string& text) {
    const Poco::StringTokenizer tokens(
        text, ";, ", Poco::StringTokenizer::TOK_IGNORE_EMPTY | Poco::StringTokenizer::TOK_TRIM);
    return {tokens.begin(), tokens.end()};
}

}  // namespace Filters
