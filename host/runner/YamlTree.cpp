#include "host/runner/YamlTree.hpp"

#include <algorithm>
#include <map>
#include <set>
#include <sstream>
#include <utility>

#include <Poco/Exception.h>
#include <fmt/format.h>
#include <yaml-cpp/eventhandler.h>
#include <yaml-cpp/exceptions.h>
#include <yaml-cpp/parser.h>

namespace Quoril::Runner {

namespace {
/// The document is more than the program wants to hold.
struct LimitReached {
    Place place;
    std::string text;
};

/// Builds the tree from the parser's events.
class TreeBuilder final : public YAML::EventHandler {
 public:
    TreeBuilder(std::string source, const VariableLookup& lookUp, Problems& problems,
                const YamlLimits& limits)
        : source_(std::move(source)), lookUp_(lookUp), problems_(problems), limits_(limits) {}

    [[nodiscard]] std::optional<YamlNode> takeRoot() { return std::exchange(root_, std::nullopt); }

    [[nodiscard]] Place toPlace(const YAML::Mark& mark) const {
        return {source_, mark.line + 1, mark.column + 1};
    }

    void OnDocumentStart(const YAML::Mark& /*mark*/) override {}
    void OnDocumentEnd() override {}

    void OnNull(const YAML::Mark& mark, YAML::anchor_t anchor) override {
        add(makeNode(YamlNode::Kind::kNull, mark), anchor);
    }

    void OnAlias(const YAML::Mark& mark, YAML::anchor_t anchor) override {
        const auto found = anchors_.find(anchor);
        // An alias inside the very node that it names would be endless.
        if (found == anchors_.end()) throw LimitReached{toPlace(mark), "an alias of itself"};
        account(total_, found->second, toPlace(mark));
        attach(YamlNode(found->second));
    }

    void OnScalar(const YAML::Mark& mark, const std::string& /*tag*/, YAML::anchor_t anchor,
                  const std::string& value) override {
        YamlNode node = makeNode(YamlNode::Kind::kScalar, mark);
        try {
            // The system would take it for the end of a file name.
            if (value.find('\0') != std::string::npos)
                throw Poco::DataFormatException("a text cannot hold a zero character");
            node.text = expandVariables(value, lookUp_);
        } catch (const Poco::DataFormatException& error) {
            node.isBroken = true;
            problems_.add(node.place, error.message());
        }
        add(std::move(node), anchor);
    }

    void OnSequenceStart(const YAML::Mark& mark, const std::string& /*tag*/, YAML::anchor_t anchor,
                         YAML::EmitterStyle::value /*style*/) override {
        open(YamlNode::Kind::kList, mark, anchor);
    }
    void OnSequenceEnd() override { close(); }

    void OnMapStart(const YAML::Mark& mark, const std::string& /*tag*/, YAML::anchor_t anchor,
                    YAML::EmitterStyle::value /*style*/) override {
        open(YamlNode::Kind::kMap, mark, anchor);
    }
    void OnMapEnd() override { close(); }

 private:
    struct Open {
        YamlNode node;
        YAML::anchor_t anchor = 0;
        std::optional<YamlNode> key;
        std::map<std::string, int> lineOfKey;
    };

    [[nodiscard]] YamlNode makeNode(YamlNode::Kind kind, const YAML::Mark& mark) const {
        YamlNode node;
        node.kind = kind;
        node.place = toPlace(mark);
        return node;
    }

    void open(YamlNode::Kind kind, const YAML::Mark& mark, YAML::anchor_t anchor) {
        if (open_.size() >= limits_.depth)
            throw LimitReached{toPlace(mark),
                               fmt::format("nested deeper than {} levels", limits_.depth)};
        open_.push_back({makeNode(kind, mark), anchor, std::nullopt, {}});
    }

    void close() {
        Open closed = std::move(open_.back());
        open_.pop_back();
        add(std::move(closed.node), closed.anchor);
    }

    void add(YamlNode node, YAML::anchor_t anchor) {
        countNode(total_, node, node.place);
        if (anchor != 0) {
            // Anchors within anchors keep what they hold many times.
            account(anchored_, node, node.place);
            anchors_[anchor] = node;
        }
        attach(std::move(node));
    }

    void attach(YamlNode node) {
        if (open_.empty()) {
            root_ = std::move(node);
            return;
        }
        Open& parent = open_.back();
        if (parent.node.isList())
            parent.node.items.push_back(std::move(node));
        else if (!parent.key)
            takeKey(parent, std::move(node));
        else
            takeValue(parent, std::move(node));
    }

    void takeKey(Open& parent, YamlNode node) {
        if (!node.isScalar()) problems_.add(node.place, "a key must be a text");
        parent.key = std::move(node);
    }

    void takeValue(Open& parent, YamlNode node) {
        const YamlNode key = *std::exchange(parent.key, std::nullopt);
        if (!key.isScalar()) return;
        // The parser notices a missing value only at what comes next.
        if (node.kind == YamlNode::Kind::kNull) node.place = key.place;
        const auto [first, isNew] = parent.lineOfKey.emplace(key.text, key.place.line);
        if (isNew)
            parent.node.entries.push_back({key, std::move(node)});
        else
            problems_.add(key.place, fmt::format("key '{}' stands twice (first in line {})",
                                                 key.text, first->second));
    }

    /// What there is of a part of the document.
    struct Amount {
        std::size_t nodes = 0;
        std::size_t bytes = 0;
    };

    void account(Amount& amount, const YamlNode& node, const Place& place) {
        countNode(amount, node, place);
        for (const YamlNode& item : node.items)
            account(amount, item, place);
        for (const YamlEntry& entry : node.entries) {
            account(amount, entry.key, place);
            account(amount, entry.value, place);
        }
    }

    void countNode(Amount& amount, const YamlNode& node, const Place& place) {
        ++amount.nodes;
        amount.bytes += node.text.size();
        if (amount.nodes > limits_.nodes)
            throw LimitReached{place, fmt::format("more than {} values", limits_.nodes)};
        if (amount.bytes > limits_.bytes)
            throw LimitReached{place, fmt::format("more than {} bytes of text", limits_.bytes)};
    }

    const std::string source_;
    const VariableLookup& lookUp_;
    Problems& problems_;
    const YamlLimits limits_;
    Amount total_;
    Amount anchored_;
    std::vector<Open> open_;
    std::map<YAML::anchor_t, YamlNode> anchors_;
    std::optional<YamlNode> root_;
};

/// The line of a text, counted from 0; empty past the end.
std::string lineOf(const std::string& text, int index) {
    std::istringstream stream(text);
    std::string line;
    for (int i = 0; i <= index; ++i)
        if (!std::getline(stream, line)) return {};
    return line;
}

/// The library counts the end of the text as characters, too: what is wrong there would be told
/// behind it.
Place clampToText(Place place, const std::string& text) {
    const auto lines = static_cast<int>(std::count(text.begin(), text.end(), '\n')) + 1;
    place.line = std::min(place.line, lines);
    const auto length = static_cast<int>(lineOf(text, place.line - 1).size());
    place.column = std::min(place.column, length + 1);
    return place;
}

/// Where a text has a NUL byte, which the library would take for the beginning of an escape
/// sequence; nothing for wide encodings, which begin with a mark or a NUL.
std::optional<Place> findNul(const std::string& text, const std::string& source) {
    constexpr std::size_t kWidest = 4;
    const std::size_t at = text.find('\0');
    if (at == std::string::npos || at < kWidest) return std::nullopt;
    if (text.starts_with("\xff\xfe") || text.starts_with("\xfe\xff")) return std::nullopt;
    const auto line =
        std::count(text.begin(), text.begin() + static_cast<std::ptrdiff_t>(at), '\n');
    const std::size_t begin = text.rfind('\n', at) + 1;  // 0 if there is none
    return Place{source, static_cast<int>(line) + 1, static_cast<int>(at - begin) + 1};
}

/// Settings of a connection hold ": ", which ends a plain text in YAML: the most likely slip.
std::string explainYamlError(const YAML::Exception& error, const std::string& text) {
    const std::string line = lineOf(text, error.mark.line);
    const bool looksLikeConnection =
        line.find("->") != std::string::npos && line.find('{') != std::string::npos;
    return error.msg +
           (looksLikeConnection ? "; a connection with settings needs quotation marks" : "");
}
}  // namespace

std::optional<YamlNode> parseYaml(const std::string& text, const std::string& source,
                                  const VariableLookup& lookUp, Problems& problems,
                                  const YamlLimits& limits) {
    if (const auto place = findNul(text, source)) {
        problems.add(*place, "a NUL byte, which no text has");
        return std::nullopt;
    }
    TreeBuilder builder(source, lookUp, problems, limits);
    try {
        std::istringstream stream(text);
        YAML::Parser parser(stream);
        if (!parser.HandleNextDocument(builder)) {
            problems.add({source, 1, 1}, "the file is empty");
            return std::nullopt;
        }
        std::optional<YamlNode> root = builder.takeRoot();
        if (parser.HandleNextDocument(builder)) {
            const auto second = builder.takeRoot();
            problems.add(second ? second->place : Place{source, 1, 1},
                         "a second document; a flow file holds one");
        }
        return root;
    } catch (const YAML::Exception& error) {
        problems.add(clampToText(builder.toPlace(error.mark), text), explainYamlError(error, text));
    } catch (const LimitReached& limit) {
        problems.add(limit.place, limit.text);
    }
    return std::nullopt;
}

}  // namespace Quoril::Runner
