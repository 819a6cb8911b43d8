#include "host/runner/Names.hpp"

#include <algorithm>
#include <limits>

namespace Quoril::Runner {

namespace {
constexpr std::size_t kMostListed = 12;
// Names of flows are short: what is longer cannot be a slip of the finger, and the distance takes
// time by the product of the lengths.
constexpr std::size_t kLongestCompared = 200;

char toLower(char c) {
    return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
}

/// Lists of names end up in as many messages as there are mistakes.
std::string shorten(const std::string& name) {
    constexpr std::size_t kLongestListed = 60;
    return name.size() <= kLongestListed ? name : name.substr(0, kLongestListed) + "...";
}

bool areEqual(char a, char b) {
    return toLower(a) == toLower(b);
}
}  // namespace

std::size_t editDistance(std::string_view a, std::string_view b) {
    using Row = std::vector<std::size_t>;
    Row beforeLast(b.size() + 1);
    Row last(b.size() + 1);
    Row row(b.size() + 1);
    for (std::size_t j = 0; j <= b.size(); ++j)
        row[j] = j;
    for (std::size_t i = 1; i <= a.size(); ++i) {
        beforeLast.swap(last);
        last.swap(row);
        row[0] = i;
        for (std::size_t j = 1; j <= b.size(); ++j) {
            const std::size_t replaced = last[j - 1] + (areEqual(a[i - 1], b[j - 1]) ? 0U : 1U);
            row[j] = std::min({replaced, last[j] + 1, row[j - 1] + 1});
            const bool isExchanged =
                i > 1 && j > 1 && areEqual(a[i - 1], b[j - 2]) && areEqual(a[i - 2], b[j - 1]);
            if (isExchanged) row[j] = std::min(row[j], beforeLast[j - 2] + 1);
        }
    }
    return row[b.size()];
}

std::string findNearestName(std::string_view wrong, const std::vector<std::string>& names) {
    if (wrong.size() > kLongestCompared) return {};
    std::string nearest;
    std::size_t smallest = std::numeric_limits<std::size_t>::max();
    for (const std::string& name : names) {
        if (name.size() > kLongestCompared) continue;
        const auto [shorter, longer] = std::minmax({wrong.size(), name.size()});
        const std::size_t allowed = std::max<std::size_t>(1, longer / 3);
        if (longer - shorter > allowed) continue;
        const std::size_t distance = editDistance(wrong, name);
        if (distance > allowed || distance >= smallest) continue;
        smallest = distance;
        nearest = name;
    }
    return nearest;
}

std::string suggestName(std::string_view wrong, const std::vector<std::string>& names) {
    const std::string nearest = findNearestName(wrong, names);
    if (!nearest.empty()) return "; did you mean '" + nearest + "'?";
    if (names.empty()) return "; there are none";
    std::string text = "; there are ";
    for (std::size_t i = 0; i < std::min(names.size(), kMostListed); ++i)
        text += (i == 0 ? "'" : ", '") + shorten(names[i]) + "'";
    if (names.size() > kMostListed) text += ", ...";
    return text;
}

}  // namespace Quoril::Runner
