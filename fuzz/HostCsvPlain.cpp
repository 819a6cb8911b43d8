#include "fuzz/HostCsvPlain.hpp"

#include "fuzz/PlainNumber.hpp"

#include <algorithm>
#include <cmath>
#include <limits>
#include <utility>

namespace Fuzz {

namespace {

using Quoril::Core::ColumnReference;
using Quoril::Core::CsvHeader;
using Quoril::Core::PinColumns;
using Part = ColumnReference::Part;

/// Ends the reading.
struct Refusal {
    std::uint64_t line = 0;
};

struct Field {
    std::string text;      ///< with doubled quotes
    std::string unquoted;  ///< with single ones
};

/// A line's fields, up to the one that spoils it.
struct Fields {
    std::vector<Field> fields;
    bool isSpoilt = false;
};

std::string trim(const std::string& text) {
    const std::size_t first = text.find_first_not_of(" \t");
    if (first == std::string::npos) return {};
    return text.substr(first, text.find_last_not_of(" \t") - first + 1);
}

Fields splitLine(std::string_view line, char separator) {
    Fields result;
    const auto isPadding = [&](char c) { return c == ' ' || (c == '\t' && separator != '\t'); };
    const auto isSeparator = [&](char c) {
        return c == separator || (separator == ' ' && c == '\t');
    };
    std::size_t at = 0;
    const auto skipPadding = [&] {
        while (at < line.size() && isPadding(line[at]))
            ++at;
    };
    for (;; ++at) {
        skipPadding();
        if (separator == ' ' && at >= line.size()) return result;
        Field field;
        if (at < line.size() && line[at] == '"') {
            bool isClosed = false;
            for (++at; at < line.size() && !isClosed; ++at) {
                const bool isDoubled = line.substr(at, 2) == "\"\"";
                isClosed = line[at] == '"' && !isDoubled;
                if (isClosed) break;
                field.unquoted += line[at];
                field.text += line[at];
                if (!isDoubled) continue;
                field.text += line[at];
                ++at;
            }
            result.isSpoilt = !isClosed;
            result.fields.push_back(field);
            if (!isClosed) return result;
            ++at;
            const std::size_t behind = at;
            skipPadding();
            const bool isGap = separator == ' ' && at > behind;
            if (at < line.size() && !isSeparator(line[at]) && !isGap) {
                result.isSpoilt = true;
                return result;
            }
            if (isGap) --at;
        } else {
            while (at < line.size() && !isSeparator(line[at]))
                field.text += line[at++];
            while (!field.text.empty() && isPadding(field.text.back()))
                field.text.pop_back();
            field.unquoted = field.text;
            result.fields.push_back(field);
        }
        if (at >= line.size()) return result;
    }
}

/// The elements of a list; nothing if the text is none.
std::optional<std::vector<std::string>> elementsOf(const std::string& field) {
    const std::string text = trim(field);
    if (text.size() < 2 || text.front() != '[' || text.back() != ']') return std::nullopt;
    std::vector<std::vector<std::string>> parts(1);
    std::string word;
    const auto endWord = [&] {
        if (!word.empty()) parts.back().push_back(std::exchange(word, {}));
    };
    for (const char c : text.substr(1, text.size() - 2)) {
        if (c != ',' && c != ' ' && c != '\t') {
            word += c;
            continue;
        }
        endWord();
        if (c == ',') parts.emplace_back();
    }
    endWord();
    std::vector<std::string> elements;
    for (std::vector<std::string>& part : parts) {
        if (part.empty() && parts.size() > 1) part.emplace_back();
        elements.insert(elements.end(), part.begin(), part.end());
    }
    return elements;
}

class Reader {
 public:
    Reader(const std::vector<PlainLine>& lines, char separator)
        : lines_(lines), separator_(separator) {}

    PlainRows read(CsvHeader header, const std::vector<PinColumns>& pins,
                   const std::optional<ColumnReference>& time) {
        PlainRows result;
        try {
            const std::size_t first = findFirstRow(header);
            for (const PinColumns& pin : pins)
                for (const ColumnReference& column : pin.columns)
                    slots_.push_back(makeSlot(column, first));
            if (time) slots_.push_back(makeSlot(*time, first));
            result.isOpened = true;
            for (std::size_t i = first; i < lines_.size(); ++i)
                result.rows.push_back(readRow(lines_[i], pins, time.has_value()));
        } catch (const Refusal& refusal) {
            result.hasError = true;
            result.badLine = refusal.line;
        }
        return result;
    }

 private:
    struct Slot {
        std::size_t column = 0;
        Part part = Part::kNumber;
        std::size_t element = 0;
        std::size_t count = 1;
    };

    std::size_t findFirstRow(CsvHeader header) {
        if (lines_.empty()) throw Refusal{};
        const Fields first = splitLine(lines_[0].text, separator_);
        if (first.isSpoilt) throw Refusal{lines_[0].number};
        columnCount_ = first.fields.size();
        bool isHeader = header == CsvHeader::kYes;
        if (header == CsvHeader::kAuto) {
            const auto isText = [](const Field& field) { return !field.text.empty(); };
            const auto isNumber = [](const Field& field) {
                return readPlainNumber(field.text) || elementsOf(field.text);
            };
            isHeader = std::any_of(first.fields.begin(), first.fields.end(), isText) &&
                       std::none_of(first.fields.begin(), first.fields.end(), isNumber);
        }
        if (!isHeader) return 0;
        for (const Field& field : first.fields)
            names_.push_back(field.unquoted);
        if (lines_.size() < 2) throw Refusal{};
        return 1;
    }

    [[nodiscard]] std::optional<std::size_t> findName(const std::string& name) const {
        const auto count = std::count(names_.begin(), names_.end(), name);
        if (count > 1) throw Refusal{};
        if (count == 0) return std::nullopt;
        return std::find(names_.begin(), names_.end(), name) - names_.begin();
    }

    [[nodiscard]] Slot makeSlot(const ColumnReference& reference, std::size_t firstRow) const {
        Slot slot;
        if (reference.position == 0) {
            // A header may hold exactly what was typed.
            if (const auto column = findName(reference.text)) {
                slot.column = *column;
                return slot;
            }
            const auto column = findName(reference.name);
            if (!column) throw Refusal{};
            slot.column = *column;
        } else {
            if (reference.position > columnCount_) throw Refusal{};
            slot.column = reference.position - 1;
        }
        slot.part = reference.part;
        slot.element = reference.element;
        if (slot.part != Part::kAllElements) return slot;
        const PlainLine& line = lines_[firstRow];
        const auto elements = elementsOf(fieldOf(line, slot.column));
        if (!elements) throw Refusal{line.number};
        slot.count = elements->size();
        return slot;
    }

    [[nodiscard]] std::string fieldOf(const PlainLine& line, std::size_t column) const {
        const Fields fields = splitLine(line.text, separator_);
        const bool isLast = column + 1 == fields.fields.size();
        if (column >= fields.fields.size() || (isLast && fields.isSpoilt))
            throw Refusal{line.number};
        return fields.fields[column].text;
    }

    [[nodiscard]] PlainRow readRow(const PlainLine& line, const std::vector<PinColumns>& pins,
                                   bool hasTime) const {
        PlainRow row;
        std::size_t slot = 0;
        for (const PinColumns& pin : pins) {
            row.pins.emplace_back();
            for (std::size_t i = 0; i < pin.columns.size(); ++i) {
                const std::vector<double> values = readSlot(line, slots_[slot++]);
                row.pins.back().insert(row.pins.back().end(), values.begin(), values.end());
            }
        }
        if (!hasTime) return row;
        row.time = readSlot(line, slots_[slot]).front();
        if (!std::isfinite(row.time)) throw Refusal{line.number};
        return row;
    }

    [[nodiscard]] std::vector<double> readSlot(const PlainLine& line, const Slot& slot) const {
        const std::string field = fieldOf(line, slot.column);
        std::vector<std::string> texts(slot.count, field);
        if (slot.part != Part::kNumber && !field.empty()) {
            const auto elements = elementsOf(field);
            if (!elements) throw Refusal{line.number};
            texts = *elements;
            if (slot.part == Part::kElement) {
                if (slot.element >= texts.size()) throw Refusal{line.number};
                texts = {texts[slot.element]};
            }
        }
        if (texts.size() != slot.count) throw Refusal{line.number};
        std::vector<double> values;
        for (const std::string& text : texts) {
            const auto value =
                text.empty() ? std::numeric_limits<double>::quiet_NaN() : readPlainNumber(text);
            if (!value) throw Refusal{line.number};
            values.push_back(*value);
        }
        return values;
    }

    const std::vector<PlainLine>& lines_;
    const char separator_;
    std::vector<std::string> names_;
    std::size_t columnCount_ = 0;
    std::vector<Slot> slots_;
};

}  // namespace

PlainSource::PlainSource(std::string_view text, char separator) : separator_(separator) {
    isReadable_ = !text.empty() && !text.starts_with("\xff\xfe") && !text.starts_with("\xfe\xff");
    if (!isReadable_) return;
    if (text.starts_with("\xef\xbb\xbf")) text.remove_prefix(3);
    for (std::uint64_t number = 1; !text.empty(); ++number) {
        const std::size_t end = std::min(text.find('\n'), text.size());
        std::string_view line = text.substr(0, end);
        text.remove_prefix(std::min(end + 1, text.size()));
        if (line.ends_with('\r')) line.remove_suffix(1);
        const std::size_t first = line.find_first_not_of(" \t");
        if (first != std::string_view::npos && line[first] != '#')
            lines_.push_back({std::string(line), number});
    }
}

PlainRows PlainSource::readRows(CsvHeader header, const std::vector<PinColumns>& pins,
                                const std::optional<ColumnReference>& time) const {
    if (!isReadable_) return {false, true, 0, {}};
    return Reader(lines_, separator_).read(header, pins, time);
}

std::optional<double> readPlainNumber(std::string_view text) {
    if (text.starts_with("+-")) return std::nullopt;
    const bool isNegative = text.starts_with('-');
    const std::string_view magnitude = withoutSign(text);
    const std::string word = toLower(magnitude);
    std::optional<double> value;
    if (word == "inf" || word == "infinity")
        value = std::numeric_limits<double>::infinity();
    else if (word == "nan" || (word.starts_with("nan(") && word.find(')') == word.size() - 1 &&
                               std::all_of(word.begin() + 4, word.end() - 1, [](char c) {
                                   return isDigit(c) || c == '_' || (c >= 'a' && c <= 'z');
                               })))
        value = std::numeric_limits<double>::quiet_NaN();
    else if (isDecimal(magnitude))
        value = readDouble(std::string(magnitude));
    if (!value || (std::isinf(*value) && word[0] != 'i')) return std::nullopt;
    return isNegative ? -*value : *value;
}

}  // namespace Fuzz
