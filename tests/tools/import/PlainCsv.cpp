#include "tests/tools/import/PlainCsv.hpp"

#include <algorithm>

namespace SensorFileTool {

namespace {

class Parser {
 public:
    Parser(const std::string& text, char separator, PlainCsv& csv)
        : text_(text), separator_(separator), csv_(csv) {}

    void parse() {
        if (text_.starts_with("\xef\xbb\xbf")) at_ = 3;
        while (at_ < text_.size() && !csv_.isQuoteOpen)
            parseLine();
    }

 private:
    [[nodiscard]] bool isPadding(char c) const {
        return c == ' ' || (c == '\t' && separator_ != '\t');
    }
    [[nodiscard]] bool isSeparator(char c) const {
        return c == separator_ || (separator_ == ' ' && c == '\t');
    }
    [[nodiscard]] bool isAtLineEnd() const { return at_ == text_.size() || text_[at_] == '\n'; }

    void parseLine() {
        std::string line = text_.substr(at_, text_.find('\n', at_) - at_);
        if (line.ends_with('\r')) line.pop_back();
        const std::size_t start = line.find_first_not_of(" \t");
        if (start != std::string::npos && line[start] != '#') {
            parseRecord();
        } else {
            if (start != std::string::npos) ++csv_.commentCount;
            while (!isAtLineEnd())
                ++at_;
        }
        if (at_ < text_.size()) ++at_;
        ++line_;
    }

    void parseRecord() {
        PlainRecord record;
        record.line = line_;
        for (bool isMore = true; isMore;) {
            while (!isAtLineEnd() && isPadding(text_[at_]))
                ++at_;
            if (separator_ == ' ' && isAtCarriageEnd()) break;
            parseField(record);
            if (csv_.isQuoteOpen) return;
            isMore = !isAtLineEnd();
            if (isMore) ++at_;
        }
        while (!isAtLineEnd())
            ++at_;
        if (record.isBad) record.fields.clear();
        csv_.records.push_back(record);
    }

    /// Whether the line ends here, or behind the CR that belongs to its end.
    [[nodiscard]] bool isAtCarriageEnd() const {
        if (isAtLineEnd()) return true;
        return text_[at_] == '\r' && (at_ + 1 == text_.size() || text_[at_ + 1] == '\n');
    }

    void parseField(PlainRecord& record) {
        std::string value;
        const bool isQuoted = at_ < text_.size() && text_[at_] == '"';
        if (isQuoted) value = parseQuoted();
        std::string rest;
        while (!isAtLineEnd() && !isSeparator(text_[at_]))
            rest += text_[at_++];
        if (isAtLineEnd() && rest.ends_with('\r')) rest.pop_back();
        if (isQuoted)
            record.isBad = record.isBad || std::any_of(rest.begin(), rest.end(),
                                                       [this](char c) { return !isPadding(c); });
        else
            value = rest;
        record.fields.push_back(trim(value));
    }

    std::string parseQuoted() {
        std::string value;
        for (++at_; at_ < text_.size(); ++at_) {
            const bool isDoubled =
                text_[at_] == '"' && at_ + 1 < text_.size() && text_[at_ + 1] == '"';
            if (isDoubled) {
                ++at_;
            } else if (text_[at_] == '"') {
                ++at_;
                return value;
            }
            if (text_[at_] == '\n') ++line_;
            value += text_[at_];
        }
        csv_.isQuoteOpen = true;
        return value;
    }

    [[nodiscard]] std::string trim(std::string value) const {
        while (!value.empty() && isPadding(value.front()))
            value.erase(0, 1);
        while (!value.empty() && isPadding(value.back()))
            value.pop_back();
        return value;
    }

    const std::string& text_;
    char separator_;
    PlainCsv& csv_;
    std::size_t at_ = 0;
    std::uint64_t line_ = 1;
};

}  // namespace

PlainCsv::PlainCsv(const std::string& text, char separator) {
    Parser(text, separator, *this).parse();
}

}  // namespace SensorFileTool
