#include "fuzz/CsvPlain.hpp"

namespace Fuzz {

namespace {

class Parser {
 public:
    Parser(std::string_view text, char separator) : text_(text), separator_(separator) {}

    PlainCsv parse() {
        PlainCsv csv;
        csv.isWide = text_.starts_with("\xff\xfe") || text_.starts_with("\xfe\xff");
        if (csv.isWide) return csv;
        if (text_.starts_with("\xef\xbb\xbf")) text_.remove_prefix(3);
        while (!text_.empty()) {
            ++line_;
            const std::string_view line = firstLine();
            const std::size_t first = line.find_first_not_of(" \t");
            if (first == std::string_view::npos || line[first] == '#') {
                passLine();
                continue;
            }
            PlainRecord record;
            record.line = line_;
            if (line.find('\0') != std::string_view::npos) {
                record.problem = 0;
                passLine();
            } else if (!takeRecord(record)) {
                csv.brokenLine = record.line;
                return csv;
            }
            csv.records.push_back(record);
        }
        return csv;
    }

 private:
    /// The present line without its end.
    [[nodiscard]] std::string_view firstLine() const {
        std::string_view line = text_.substr(0, text_.find('\n'));
        if (line.ends_with('\r')) line.remove_suffix(1);
        return line;
    }
    void passLine() {
        const std::size_t end = text_.find('\n');
        text_.remove_prefix(end == std::string_view::npos ? text_.size() : end + 1);
    }

    [[nodiscard]] bool isAtEnd() const {
        return text_.empty() || text_[0] == '\n' || text_ == "\r" || text_.starts_with("\r\n");
    }
    [[nodiscard]] bool isBlank(char c) const {
        return c == ' ' || (c == '\t' && separator_ != '\t');
    }
    [[nodiscard]] bool isSeparator(char c) const {
        return c == separator_ || (separator_ == ' ' && c == '\t');
    }
    void skipBlanks() {
        while (!isAtEnd() && isBlank(text_[0]))
            text_.remove_prefix(1);
    }

    /// False if a quote is not closed.
    bool takeRecord(PlainRecord& record) {
        for (;;) {
            skipBlanks();
            if (isAtEnd() && separator_ == ' ') break;
            if (!isAtEnd() && text_[0] == '"') {
                if (!takeQuoted(record)) return false;
            } else {
                takeField(record);
            }
            if (isAtEnd()) break;
            text_.remove_prefix(1);
        }
        passLine();
        return true;
    }

    void takeField(PlainRecord& record) {
        std::string field;
        while (!isAtEnd() && !isSeparator(text_[0])) {
            field += text_[0];
            text_.remove_prefix(1);
        }
        addTrimmed(record, field);
    }

    void addTrimmed(PlainRecord& record, std::string field) {
        while (!field.empty() && isBlank(field.back()))
            field.pop_back();
        while (!field.empty() && isBlank(field.front()))
            field.erase(0, 1);
        record.fields.push_back(field);
    }

    bool takeQuoted(PlainRecord& record) {
        std::string field;
        text_.remove_prefix(1);
        while (!text_.empty() && (text_[0] != '"' || text_.starts_with("\"\""))) {
            if (text_[0] == '\n') ++line_;
            field += text_[0];
            text_.remove_prefix(text_[0] == '"' ? 2 : 1);
        }
        if (text_.empty()) return false;
        text_.remove_prefix(1);
        addTrimmed(record, field);
        for (; !isAtEnd() && !isSeparator(text_[0]); text_.remove_prefix(1))
            if (!isBlank(text_[0]) && !record.problem) record.problem = record.fields.size() - 1;
        return true;
    }

    std::string_view text_;
    char separator_;
    std::uint64_t line_ = 0;
};

}  // namespace

PlainCsv readPlainCsv(std::string_view text, char separator) {
    return Parser(text, separator).parse();
}

std::vector<std::string> splitPlainList(std::string_view text) {
    std::vector<std::string> elements;
    if (text.size() < 2 || text.front() != '[' || text.back() != ']') return elements;
    bool isOpen = false;      // an element is being read
    bool isSeparated = true;  // a mark, or the beginning, stands before the next element
    for (const char c : text.substr(1, text.size() - 2)) {
        if (c == ' ' || c == '\t') {
            isOpen = false;
        } else if (c == ',' || c == ';') {
            if (isSeparated) elements.emplace_back();
            isOpen = false;
            isSeparated = true;
        } else {
            if (!isOpen) elements.emplace_back();
            elements.back() += c;
            isOpen = true;
            isSeparated = false;
        }
    }
    return elements;
}

}  // namespace Fuzz
