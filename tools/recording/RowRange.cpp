#include "tools/recording/RowRange.hpp"

#include "tools/common/UsageException.hpp"

#include <charconv>
#include <string_view>

namespace SensorFileTool {

namespace {

bool parse(std::string_view text, std::uint64_t& number) {
    if (text.empty()) return true;
    const char* end = text.data() + text.size();
    const auto result = std::from_chars(text.data(), end, number);
    return result.ec == std::errc() && result.ptr == end;
}

}  // namespace

RowRange parseRowRange(const std::string& text) {
    RowRange range;
    const std::string_view view = text;
    const std::size_t colon = view.find(':');
    if (colon == std::string_view::npos || !parse(view.substr(0, colon), range.first) ||
        !parse(view.substr(colon + 1), range.last) || range.first > range.last)
        throw UsageException("--rows: '" + text + "' is no range of rows such as 100:200 or 100:");
    return range;
}

}  // namespace SensorFileTool
