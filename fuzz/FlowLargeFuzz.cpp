/// Reads large hostile flow files. The input is the plan of one: parts between bytes of value 1,
/// every second of which is repeated until the file is large, with the number of the repetition in
/// place of each byte of value 2.
///
/// However a file is nested, aliased and named: reading it ends within two seconds, what it says is
/// in proportion to the file, and each problem lies within the file.

#include "fuzz/FlowTexts.hpp"
#include "fuzz/Harness.hpp"
#include "host/runner/FlowFile.hpp"

#include <cstdint>
#include <ctime>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace {

using namespace Quoril::Runner;
using Fuzz::require;

constexpr char kBetweenParts = 1;
constexpr char kNumber = 2;
// A quarter of the largest file that is read: sanitizers make everything slower.
constexpr std::size_t kSize = std::size_t{256} * 1024;
constexpr double kMostSeconds = 2.0;
// Each value is told of once or twice.
constexpr std::size_t kMostTold = std::size_t{32} << 20U;
constexpr const char* kSource = "flow.yaml";

std::vector<std::string_view> partsOf(std::string_view plan) {
    std::vector<std::string_view> parts;
    for (;;) {
        const std::size_t end = plan.find(kBetweenParts);
        parts.push_back(plan.substr(0, end));
        if (end == std::string_view::npos) return parts;
        plan.remove_prefix(end + 1);
    }
}

void appendNumbered(std::string& text, std::string_view part, std::size_t number) {
    for (const char c : part) {
        if (c == kNumber)
            text += std::to_string(number);
        else
            text += c;
    }
}

std::string makeFile(std::string_view plan) {
    const std::vector<std::string_view> parts = partsOf(plan);
    const std::size_t share = kSize / (parts.size() / 2 + 1);
    std::string text;
    for (std::size_t i = 0; i < parts.size(); ++i) {
        const std::size_t begin = text.size();
        std::size_t number = 0;
        do
            appendNumbered(text, parts[i], number++);
        while (i % 2 == 1 && !parts[i].empty() && text.size() - begin < share);
    }
    return text;
}

std::optional<std::string> lookUp(const std::string& name) {
    if (name == "LONG") return std::string(1000, 'x');
    return std::nullopt;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string text = makeFile(Fuzz::toText(data, size));
    const std::clock_t begin = std::clock();
    Problems problems;
    const FlowModel model = parseFlow(text, kSource, lookUp, problems);
    const auto ticks = static_cast<double>(std::clock() - begin);
    require(ticks / CLOCKS_PER_SEC < kMostSeconds, "reading takes too long");
    std::size_t told = 0;
    for (const Problem& problem : problems.getList())
        told += problem.text.size();
    require(told < kMostTold, "too much is told");
    // Bytes of value 0 in front make it text of wide characters.
    if (text.substr(0, 4).find('\0') == std::string::npos && !text.starts_with("\xff\xfe") &&
        !text.starts_with("\xfe\xff"))
        Fuzz::checkPlaces(problems, kSource, text);
    if (!problems.hasErrors()) Fuzz::checkModel(model);
    return 0;
}
