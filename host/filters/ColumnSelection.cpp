#include "host/filters/ColumnSelection.hpp"

#include "host/filters/NumberText.hpp"

#include <algorithm>
#include <charconv>
#include <string_view>

#include <Poco/Exception.h>

namespace Quoril::Core {
namespace {

// More columns or elements than any table has; keeps positions far from overflow.
constexpr std::size_t kMaxIndex = 1000000;

class SelectionParser {
 public:
    explicit SelectionParser(std::string_view text) : text_(text) {}

    std::vector<PinColumns> parseSelection() {
        std::vector<PinColumns> pins;
        for (skipBlanks(); !isAtEnd(); skipBlanks()) {
            pins.push_back(parsePin(pins));
            if (!isAtEnd()) ++position_;  // the ';'
        }
        return pins;
    }

    ColumnReference parseSingle() {
        ColumnReference column = parseColumn();
        if (!isAtEnd()) fail(position_, "one column is expected");
        if (column.part == ColumnReference::Part::kAllElements)
            fail(0, "one element is expected, such as " + column.text.substr(0, 20) + "[0]");
        return column;
    }

 private:
    PinColumns parsePin(const std::vector<PinColumns>& earlier) {
        const std::size_t start = position_;
        const Name name = parseName("=,;");
        PinColumns pin{name.value, {}};
        if (!name.suffix.empty()) fail(start, "text after the closing quote");
        if (pin.pin.empty()) fail(start, "the name of a pin is missing");
        if (std::any_of(earlier.begin(), earlier.end(),
                        [&](const PinColumns& other) { return other.pin == pin.pin; }))
            fail(start, "pin '" + pin.pin + "' occurs twice");
        if (isAtEnd() || text_[position_] != '=')
            fail(position_, "'=' and columns are expected after the pin '" + pin.pin + "'");
        do {
            ++position_;  // the '=' or ','
            pin.columns.push_back(parseColumn());
        } while (!isAtEnd() && text_[position_] == ',');
        return pin;
    }

    ColumnReference parseColumn() {
        skipBlanks();
        const std::size_t start = position_;
        const Name name = parseName("=,;");
        if (!isAtEnd() && text_[position_] == '=')
            fail(position_, "unexpected '='; names with '=' must be quoted");
        ColumnReference column;
        column.text = std::string(trimBlanks(text_.substr(start, position_ - start)));
        if (column.text.empty()) fail(start, "a column is missing");
        const std::string_view base = splitPart(name.isQuoted ? name.suffix : name.value, column);
        if (name.isQuoted && !base.empty()) fail(start, "text after the closing quote");
        if (name.isQuoted)
            column.name = name.value;
        else
            setUnquotedBase(base, start, column);
        if (name.isQuoted && column.part == ColumnReference::Part::kNumber)
            column.text = column.name;
        return column;
    }

    struct Name {
        std::string value;
        std::string suffix;  ///< what follows the closing quote
        bool isQuoted = false;
    };

    Name parseName(std::string_view ends) {
        skipBlanks();
        Name name;
        if (!isAtEnd() && text_[position_] == '"') {
            name.isQuoted = true;
            name.value = parseQuoted();
        }
        const std::size_t start = position_;
        position_ = std::min(text_.find_first_of(ends, position_), text_.size());
        const std::string rest(trimBlanks(text_.substr(start, position_ - start)));
        (name.isQuoted ? name.suffix : name.value) = rest;
        return name;
    }

    std::string parseQuoted() {
        const std::size_t start = position_++;
        std::string value;
        for (;;) {
            if (isAtEnd()) fail(start, "the quote is not closed");
            const char c = text_[position_++];
            const bool isDoubled = c == '"' && !isAtEnd() && text_[position_] == '"';
            if (c == '"' && !isDoubled) return value;
            if (isDoubled) ++position_;
            value += c;
        }
    }

    // Takes "[2]" or "[]" off the end of a name; brackets around anything else belong to the name.
    static std::string_view splitPart(std::string_view name, ColumnReference& column) {
        const std::size_t bracket = name.rfind('[');
        if (bracket == std::string_view::npos || name.back() != ']') return name;
        const std::string_view index = name.substr(bracket + 1, name.size() - bracket - 2);
        if (index.empty())
            column.part = ColumnReference::Part::kAllElements;
        else if (readIndex(index, column.element))
            column.part = ColumnReference::Part::kElement;
        else
            return name;
        return trimBlanks(name.substr(0, bracket));
    }

    void setUnquotedBase(std::string_view base, std::size_t place, ColumnReference& column) const {
        const bool isMarked = base.starts_with('#');
        std::size_t position = 0;
        if (readIndex(isMarked ? base.substr(1) : base, position)) {
            if (position == 0) fail(place, "columns are counted from 1");
            column.position = position;
            return;
        }
        if (isMarked)
            fail(place, "'#' is followed by the column's position; names with '#' must be quoted");
        if (base.empty()) fail(place, "a column is missing");
        column.name = std::string(base);
    }

    static bool readIndex(std::string_view digits, std::size_t& index) {
        const char* const end = digits.data() + digits.size();
        const auto [parsedEnd, error] = std::from_chars(digits.data(), end, index);
        return !digits.empty() && parsedEnd == end && error == std::errc() && index <= kMaxIndex;
    }

    [[nodiscard]] bool isAtEnd() const { return position_ >= text_.size(); }

    void skipBlanks() {
        while (!isAtEnd() && (text_[position_] == ' ' || text_[position_] == '\t'))
            ++position_;
    }

    [[noreturn]] void fail(std::size_t place, const std::string& cause) const {
        throw Poco::DataFormatException("Column selection '" + std::string(text_) +
                                        "', character " + std::to_string(place + 1) + ": " + cause);
    }

    const std::string_view text_;
    std::size_t position_ = 0;
};

}  // namespace

std::vector<PinColumns> parseColumnSelection(const std::string& text) {
    return SelectionParser(text).parseSelection();
}

ColumnReference parseColumnReference(const std::string& text) {
    return SelectionParser(text).parseSingle();
}

}  // namespace Quoril::Core
