#include "tools/common/Share.hpp"

#include "sensorfile/NumberText.hpp"
#include "tools/common/UsageException.hpp"

namespace SensorFileTool {

double parseShare(const std::string& option, const std::string& text) {
    constexpr double kPercent = 100.0;
    const char* const last = text.data() + text.size();
    double share = -1.0;
    const auto result = SensorFile::parseDouble(text.data(), last, share);
    const bool isPercent = last - result.ptr == 1 && *result.ptr == '%';
    if (isPercent) share /= kPercent;
    const bool isNumber = result.ec == std::errc{} && (isPercent || result.ptr == last);
    if (!isNumber || !(share >= 0.0 && share <= 1.0))
        throw UsageException(option + ": '" + text + "' is no share such as 0.001 or 0.1%");
    return share;
}

}  // namespace SensorFileTool
