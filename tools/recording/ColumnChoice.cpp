#include "tools/recording/ColumnChoice.hpp"

#include "tools/common/UsageException.hpp"

#include <algorithm>
#include <numeric>
#include <string_view>

#include <Poco/StringTokenizer.h>

namespace SensorFileTool {

namespace {

/// A mismatch goes back to the last star alone: what an earlier one could take besides, that one
/// can take as well.
bool isMatch(std::string_view pattern, std::string_view name) {
    std::size_t p = 0;
    std::size_t n = 0;
    std::size_t behindStar = std::string_view::npos;
    std::size_t retry = 0;
    while (n < name.size()) {
        if (p < pattern.size() && pattern[p] == '*') {
            behindStar = ++p;
            retry = n;
        } else if (p < pattern.size() && (pattern[p] == '?' || pattern[p] == name[n])) {
            ++p;
            ++n;
        } else if (behindStar != std::string_view::npos) {
            p = behindStar;
            n = ++retry;
        } else {
            return false;
        }
    }
    return pattern.find_first_not_of('*', p) == std::string_view::npos;
}

std::string listColumns(const SensorFile::SensorFileConfig& config) {
    std::string list;
    for (std::size_t i = 0; i < config.getColumnCount(); ++i)
        list += (i == 0 ? "" : ", ") + config.getColumn(i).getName();
    return list;
}

[[noreturn]] void refuse(const std::string& pattern, const SensorFile::SensorFileConfig& config,
                         const char* option) {
    throw UsageException(std::string(option) + ": no column matches '" + pattern +
                         "'; there are: " + listColumns(config));
}

}  // namespace

std::vector<std::size_t> chooseColumns(const SensorFile::SensorFileConfig& config,
                                       const std::string& patterns, const char* option) {
    std::vector<std::size_t> chosen;
    if (patterns.empty()) {
        chosen.resize(config.getColumnCount());
        std::iota(chosen.begin(), chosen.end(), std::size_t{0});
        return chosen;
    }
    const Poco::StringTokenizer list(
        patterns, ",", Poco::StringTokenizer::TOK_TRIM | Poco::StringTokenizer::TOK_IGNORE_EMPTY);
    if (list.count() == 0) refuse(patterns, config, option);
    for (const std::string& pattern : list) {
        bool isFound = false;
        for (std::size_t i = 0; i < config.getColumnCount(); ++i) {
            if (!isMatch(pattern, config.getColumn(i).getName())) continue;
            isFound = true;
            if (std::find(chosen.begin(), chosen.end(), i) == chosen.end()) chosen.push_back(i);
        }
        if (!isFound) refuse(pattern, config, option);
    }
    return chosen;
}

}  // namespace SensorFileTool
