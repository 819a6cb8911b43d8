#include "framework/ComponentVersion.hpp"

#include <array>
#include <cstddef>

#include <Poco/NumberParser.h>
#include <Poco/StringTokenizer.h>

namespace Quoril::Core {

ComponentVersion::ComponentVersion(const std::string& text) : text_(text) {
    const std::array<int*, 3> numbers{&major_, &minor_, &revision_};
    const Poco::StringTokenizer parts(text, ".", Poco::StringTokenizer::TOK_TRIM);
    for (std::size_t i = 0; i < numbers.size() && i < parts.count(); ++i) {
        int number = 0;
        if (Poco::NumberParser::tryParse(parts[i], number)) *numbers[i] = number;
    }
}

}  // namespace Quoril::Core
