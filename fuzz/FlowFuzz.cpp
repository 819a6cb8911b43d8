/// Reads hostile flow files, and the small texts in them. The first byte of the input chooses
/// which, the rest is the text.
///
/// Beyond "no crash": the same file gives the same model and the same problems again, each problem
/// lies within the file, a file without errors is a flow that could be run, and written down again
/// it is the same one. What is no variable stays as the YAML library reads it, only variables that
/// stand in the file are asked for, and no file is opened or made.

#include "fuzz/FlowTexts.hpp"
#include "fuzz/FolderWatch.hpp"
#include "fuzz/Harness.hpp"
#include "fuzz/PlainNumber.hpp"
#include "host/runner/ConnectionQuotes.hpp"
#include "host/runner/ConnectionText.hpp"
#include "host/runner/FlowFile.hpp"
#include "host/runner/Names.hpp"
#include "host/runner/TimeText.hpp"
#include "host/runner/YamlTree.hpp"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <filesystem>
#include <map>
#include <optional>
#include <set>
#include <string>
#include <vector>

#include <Poco/Exception.h>
#include <yaml-cpp/yaml.h>

namespace {

using namespace Quoril::Runner;
using Fuzz::require;

constexpr const char* kSource = "flow.yaml";

const std::map<std::string, std::string>& variables() {
    static const std::map<std::string, std::string> kVariables = {
        {"A", "a"}, {"OUTPUT", "imu.bin"}, {"EMPTY", ""}, {"NESTED", "${A}"}, {"LIST", "[1, 2]"}};
    return kVariables;
}

std::optional<std::string> lookUp(const std::string& name) {
    const auto found = variables().find(name);
    if (found == variables().end()) return std::nullopt;
    return found->second;
}

// ---- Variables ----

bool isVariableName(const std::string& name) {
    if (name.empty() || Fuzz::isDigit(name[0])) return false;
    return std::all_of(name.begin(), name.end(), [](char c) {
        return c == '_' || Fuzz::isDigit(c) || (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z');
    });
}

/// Nothing if the text is refused.
std::optional<std::string> expandPlainly(const std::string& text) {
    std::string expanded;
    for (std::size_t at = 0; at < text.size(); ++at) {
        if (text[at] != '$') {
            expanded += text[at];
        } else if (text.substr(at, 2) == "$$") {
            expanded += '$';
            ++at;
        } else if (text.substr(at, 2) != "${") {
            expanded += '$';
        } else {
            const std::size_t end = text.find('}', at);
            if (end == std::string::npos) return std::nullopt;
            const std::string inner = text.substr(at + 2, end - at - 2);
            const std::size_t mark = inner.find(":-");
            const std::string name = inner.substr(0, mark);
            if (!isVariableName(name)) return std::nullopt;
            const bool hasDefault = mark != std::string::npos;
            const std::optional<std::string> value = lookUp(name);
            if (!value && !hasDefault) return std::nullopt;
            if (hasDefault && inner.find("${", mark) != std::string::npos) return std::nullopt;
            expanded += value && !(hasDefault && value->empty()) ? *value : inner.substr(mark + 2);
            at = end;
        }
    }
    return expanded;
}

void checkVariables(const std::string& text) {
    std::optional<std::string> expanded;
    try {
        expanded = expandVariables(text, lookUp);
    } catch (const Poco::DataFormatException& error) {
        require(!error.message().empty(), "refused without a word");
    }
    require(expanded == expandPlainly(text), "variables are replaced otherwise");
}

// ---- Small texts ----

/// Nothing if the text is no time; negative if it is one, but too long.
std::optional<std::int64_t> readTimePlainly(const std::string& text) {
    const auto endsWith = [&](std::string_view end) { return text.ends_with(end); };
    const double unit = endsWith("ms") ? 1e6 : endsWith("s") ? 1e9 : endsWith("min") ? 60e9 : 0.0;
    if (unit == 0.0) return std::nullopt;
    std::string number = text.substr(0, text.find_last_not_of("mins") + 1);
    const std::size_t length = endsWith("ms") ? 2 : endsWith("s") ? 1 : 3;
    if (number.size() + length != text.size()) return std::nullopt;
    number.resize(number.find_last_not_of(' ') + 1);
    const std::string_view withoutPlus =
        number.starts_with('+') ? std::string_view(number).substr(1) : std::string_view(number);
    const bool isMinus = withoutPlus.starts_with('-') && !number.starts_with('+');
    if (!Fuzz::isDecimal(withoutPlus.substr(isMinus ? 1 : 0))) return std::nullopt;
    const double value = *Fuzz::readDouble(number);
    const std::string digits = number.substr(0, number.find_first_of("eE"));
    const bool isTooSmall = value == 0.0 && digits.find_first_of("123456789") != std::string::npos;
    if (value < 0.0 || isTooSmall || value - value != 0.0) return std::nullopt;
    if (value * unit > 1000.0 * 24 * 3600 * 1e9) return -1;
    return std::llround(value * unit);
}

void checkTime(const std::string& text) {
    const std::optional<std::int64_t> expected = readTimePlainly(text);
    try {
        require(parseTime(text).count() == expected, "another time");
    } catch (const Poco::DataFormatException& error) {
        require(!expected || *expected == -1, "a time is refused");
        const bool isLong = error.message().ends_with("' is longer than 1000 days");
        require(isLong == expected.has_value(), "refused for another cause");
    }
}

void checkConnection(const std::string& text) {
    try {
        const ConnectionEntry connection = parseConnection({text, {kSource, 1, 1}});
        const std::string from = connection.from.filter + "." + connection.from.member;
        const std::string to = connection.to.filter + "." + connection.to.member;
        const std::size_t arrow = text.find("->");
        require(arrow != std::string::npos &&
                    text.substr(0, arrow).find(from) != std::string::npos &&
                    text.find(to, arrow) != std::string::npos,
                "pins that are not in the text");
        require(connection.from.filter.find('.') == std::string::npos &&
                    connection.to.filter.find('.') == std::string::npos,
                "split at another dot");
    } catch (const Poco::DataFormatException& error) {
        require(!error.message().empty(), "refused without a word");
    }
}

void checkNames(const std::string& text) {
    constexpr std::size_t kLongest = 64;
    if (text.size() > kLongest) return;
    const std::string one = text.substr(0, text.size() / 2);
    const std::string other = text.substr(text.size() / 2);
    const std::size_t distance = editDistance(one, other);
    require(distance == editDistance(other, one), "nearer in one direction");
    require((distance == 0) == (Fuzz::toLower(one) == Fuzz::toLower(other)), "equal or not");
    require(distance <= std::max(one.size(), other.size()) &&
                distance >= std::max(one.size(), other.size()) - std::min(one.size(), other.size()),
            "nearer or farther than can be");
    std::string nearest;
    std::size_t smallest = text.size() + 100;
    for (const std::string& name : {std::string("Record"), other, std::string("Replay")}) {
        const std::size_t away = editDistance(one, name);
        const std::size_t longest = std::max(one.size(), name.size());
        if (away >= smallest || away > std::max<std::size_t>(longest / 3, 1)) continue;
        nearest = name;
        smallest = away;
    }
    require(findNearestName(one, {"Record", other, "Replay"}) == nearest, "another nearest name");
}

// ---- Quotation marks ----

std::vector<std::string> linesOf(const std::string& text) {
    std::vector<std::string> lines(1);
    for (const char c : text) {
        if (c == '\n')
            lines.emplace_back();
        else
            lines.back() += c;
    }
    return lines;
}

/// Whether a line is another with one item of it in quotation marks.
bool isQuotedFrom(const std::string& quoted, const std::string& line) {
    const auto [before, after] =
        std::mismatch(line.begin(), line.end(), quoted.begin(), quoted.end());
    if (after == quoted.end() || *after != '\'') return false;
    std::string plain;
    const std::size_t begin = static_cast<std::size_t>(after - quoted.begin()) + 1;
    const std::size_t end = quoted.rfind('\'');
    if (end < begin) return false;
    for (std::size_t at = begin; at < end; ++at) {
        plain += quoted[at];
        if (quoted[at] != '\'') continue;
        if (++at == end || quoted[at] != '\'') return false;
    }
    return plain.find("->") != std::string::npos &&
           line == quoted.substr(0, begin - 1) + plain + quoted.substr(end + 1);
}

void checkQuotes(const std::string& text) {
    const std::string quoted = quoteConnections(text);
    if (text.find("connections:") == std::string::npos)
        require(quoted == text, "quoted for nothing");
    const std::vector<std::string> before = linesOf(text);
    const std::vector<std::string> after = linesOf(quoted);
    require(before.size() == after.size(), "lines are lost or made");
    for (std::size_t i = 0; i < before.size(); ++i)
        require(before[i] == after[i] || isQuotedFrom(after[i], before[i]), "a line is changed");
    require(quoteConnections(quoted) == quoted, "quoted twice");
}

// ---- Files ----

/// Whether the YAML library would take the bytes for a wider encoding than UTF-8.
bool isWideText(const std::string& text) {
    const std::string start = text.substr(0, 4);
    return start.find('\0') != std::string::npos || start.starts_with("\xff\xfe") ||
           start.starts_with("\xfe\xff");
}

bool isSameTree(const YamlNode& node, const YAML::Node& other) {
    switch (node.kind) {
        case YamlNode::Kind::kNull:
            return other.IsNull();
        case YamlNode::Kind::kScalar:
            return other.IsScalar() && other.Scalar() == node.text;
        case YamlNode::Kind::kList:
            if (!other.IsSequence() || other.size() != node.items.size()) return false;
            return std::equal(node.items.begin(), node.items.end(), other.begin(), isSameTree);
        case YamlNode::Kind::kMap:
            if (!other.IsMap() || other.size() != node.entries.size()) return false;
            return std::equal(node.entries.begin(), node.entries.end(), other.begin(),
                              [](const YamlEntry& entry, const auto& pair) {
                                  return isSameTree(entry.key, pair.first) &&
                                         isSameTree(entry.value, pair.second);
                              });
    }
    return false;
}

void checkTree(const std::string& text) {
    Problems problems;
    const std::optional<YamlNode> tree = parseYaml(text, kSource, lookUp, problems);
    require(tree.has_value() || problems.hasErrors(), "no document, and no word of it");
    const bool isPlain = text.find('$') == std::string::npos && problems.getList().empty();
    if (isPlain) require(isSameTree(*tree, YAML::Load(text)), "read as another document");
}

struct Reading {
    std::string model;
    std::string problems;
    bool operator==(const Reading&) const = default;
};

std::string describeProblems(const Problems& problems) {
    std::string text;
    for (const Problem& problem : problems.getList())
        text += problem.place.toText() + ": " + problem.text + "\n";
    return text;
}

void checkRoundTrip(const FlowModel& model) {
    const std::optional<std::string> text = Fuzz::writeFlow(model);
    if (!text) return;
    Problems problems;
    const FlowModel again = parseFlow(*text, kSource, lookUp, problems);
    require(problems.getList().empty(), "written down again, it has problems");
    require(Fuzz::describeModel(again, false) == Fuzz::describeModel(model, false),
            "written down again, it differs");
}

void checkFile(const std::string& text) {
    std::set<std::string> asked;
    const auto ask = [&asked](const std::string& name) {
        asked.insert(name);
        return lookUp(name);
    };
    Problems problems;
    const FlowModel model = parseFlow(text, kSource, ask, problems);
    const Reading reading{Fuzz::describeModel(model, true), describeProblems(problems)};
    Problems problemsAgain;
    const FlowModel modelAgain = parseFlow(text, kSource, ask, problemsAgain);
    require(
        reading == Reading{Fuzz::describeModel(modelAgain, true), describeProblems(problemsAgain)},
        "read twice, it differs");
    if (!isWideText(text)) {
        for (const std::string& name : asked)
            require(text.find(name) != std::string::npos, "a variable that is not in the file");
        Fuzz::checkPlaces(problems, kSource, text);
    }
    if (problems.hasErrors()) return;
    Fuzz::checkModel(model);
    checkRoundTrip(model);
}

/// A folder with files that flows name; it is the current one while a text is read, so that a file
/// that is opened or made is noticed.
class WatchedFolder {
 public:
    /// For its scope.
    class Stay {
     public:
        explicit Stay(const std::string& folder) : before_(std::filesystem::current_path()) {
            std::filesystem::current_path(folder);
        }
        ~Stay() { std::filesystem::current_path(before_); }
        Stay(const Stay&) = delete;
        Stay& operator=(const Stay&) = delete;

     private:
        std::filesystem::path before_;
    };

    WatchedFolder() : path_(Fuzz::scratchPath("flow")) {
        std::filesystem::create_directory(path_);
        for (const char* name : {"a", "imu.bin", "x", kSource})
            Fuzz::writeFile(path_ + "/" + name, "");
        watch_.emplace(path_);
    }

    [[nodiscard]] const std::string& getPath() const { return path_; }
    [[nodiscard]] bool wasTouched() { return watch_->wasTouched(); }

 private:
    std::string path_;
    std::optional<Fuzz::FolderWatch> watch_;
};

void check(int choice, const std::string& text) {
    switch (choice) {
        case 0:
            checkVariables(text);
            checkTime(text);
            checkConnection(text);
            checkNames(text);
            break;
        case 1:
            checkQuotes(text);
            checkTree(text);
            break;
        default:
            checkFile(text);
            break;
    }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static WatchedFolder folder;
    if (size < 1) return 0;
    {
        const WatchedFolder::Stay stay(folder.getPath());
        check(data[0] % 4, std::string(Fuzz::toText(data + 1, size - 1)));
    }
    require(!folder.wasTouched(), "a file was opened or made");
    return 0;
}
