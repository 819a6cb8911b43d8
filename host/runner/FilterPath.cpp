#include "host/runner/FilterPath.hpp"

#include <Poco/Path.h>

namespace Quoril::Runner {

std::string toFilterPath(const std::string& text) {
    const std::string file = Poco::Path::expand(text);
    // Filters take no "take1:" for a drive where folders are parted by '/'.
    const bool isRelative = Poco::Path::separator() == '/' && !file.starts_with('/');
    return Poco::Path(isRelative ? Poco::Path::current() + file : file).makeAbsolute().toString();
}

}  // namespace Quoril::Runner
