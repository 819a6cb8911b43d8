#include "host/filters/SampleLine.hpp"

#include "text/VisibleText.hpp"

#include <array>
#include <charconv>
#include <cmath>

#include <fmt/format.h>
#include <nlohmann/json.hpp>

namespace Quoril::Core {
namespace {

// Enough to tell any two doubles apart (std::numeric_limits<double>::max_digits10).
constexpr int kDigits = 17;

void appendNumber(std::string& text, double value) {
    if (std::isnan(value)) {
        text += "\"nan\"";
    } else if (std::isinf(value)) {
        text += value > 0.0 ? "\"inf\"" : "\"-inf\"";
    } else {
        std::array<char, 32> digits{};
        const auto end = std::to_chars(digits.data(), digits.data() + digits.size(), value,
                                       std::chars_format::general, kDigits);
        text.append(digits.data(), end.ptr);
    }
}

}  // namespace

std::string toJsonString(std::string_view text) {
    constexpr auto kReplace = nlohmann::json::error_handler_t::replace;
    return Texts::toVisibleJson(nlohmann::json(std::string(text)).dump(-1, ' ', false, kReplace));
}

void appendSampleLine(std::string& text, std::string_view members,
                      const TimeStampedData<Eigen::MatrixXd>& sample) {
    text += '{';
    text += members;
    text += ",\"time\":";
    appendNumber(text, sample.timeStamp);
    fmt::format_to(std::back_inserter(text), ",\"rows\":{},\"cols\":{},\"values\":[",
                   sample.value.rows(), sample.value.cols());
    for (Eigen::Index i = 0; i < sample.value.size(); ++i) {
        if (i > 0) text += ',';
        appendNumber(text, sample.value.data()[i]);
    }
    text += "]}\n";
}

}  // namespace Quoril::Core
