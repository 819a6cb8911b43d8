#include "tools/common/DateText.hpp"

#include "tools/common/UsageException.hpp"

#include <array>
#include <cctype>
#include <string_view>

namespace SensorFileTool {

namespace {

// Binary files hold the year minus 2000 in a byte.
constexpr int kFirstYear = 2000;
constexpr int kLastYear = 2255;

/// Takes the numbers of a text that looks like a pattern, in which 0 stands for a digit.
bool readPattern(std::string_view text, std::string_view pattern, std::array<int, 6>& numbers) {
    constexpr int kBase = 10;
    if (text.size() != pattern.size()) return false;
    std::size_t number = 0;
    for (std::size_t i = 0; i < text.size(); ++i) {
        const bool isDigit = std::isdigit(static_cast<unsigned char>(text[i])) != 0;
        if (pattern[i] == '0') {
            if (!isDigit) return false;
            numbers[number] = numbers[number] * kBase + (text[i] - '0');
        } else if (pattern[i] == 'T' ? text[i] == 'T' || text[i] == ' ' : text[i] == pattern[i]) {
            ++number;
        } else {
            return false;
        }
    }
    return true;
}

}  // namespace

Poco::DateTime parseDate(const std::string& option, const std::string& text) {
    std::string_view digits = text;
    if (digits.ends_with('Z')) digits.remove_suffix(1);
    std::array<int, 6> date{};
    const bool isDate =
        readPattern(digits, "0000-00-00T00:00:00", date) &&
        Poco::DateTime::isValid(date[0], date[1], date[2], date[3], date[4], date[5]);
    if (!isDate)
        throw UsageException(option + ": '" + text + "' is no date such as 2017-05-23T10:04:31Z");
    if (date[0] < kFirstYear || date[0] > kLastYear)
        throw UsageException(option + ": sensor files hold years from 2000 to 2255");
    return {date[0], date[1], date[2], date[3], date[4], date[5]};
}

}  // namespace SensorFileTool
