#include "tools/check/TextRowScanner.hpp"

#include "sensorfile/NumberText.hpp"

#include <algorithm>

namespace SensorFileTool {

namespace {

using Form = TextRow::Form;

constexpr std::size_t kMinLine = std::size_t{1024} * 1024;

std::vector<int> typeCodesOf(const SensorFile::SensorFileConfig& config) {
    std::vector<int> codes;
    for (std::size_t i = 0; i < config.getColumnCount(); ++i)
        codes.push_back(config.getColumn(i).getTypeCode());
    return codes;
}

bool isBlank(char c) {
    return c == ' ' || (c >= '\t' && c <= '\r');
}

/// The next TAB or line feed; the text's size if there is none.
std::size_t findEnd(std::string_view text, std::size_t at) {
    while (at < text.size() && text[at] != '\t' && text[at] != '\n')
        ++at;
    return at;
}

bool isAllBlank(std::string_view text) {
    return std::all_of(text.begin(), text.end(), isBlank);
}

}  // namespace

TextRowScanner::TextRowScanner(const std::string& path, const SectionMap& map)
    : typeCodes_(typeCodesOf(map.config)),
      lines_(path, map.rowStart,
             std::max(kMinLine, typeCodes_.size() * SensorFile::kMaxNumberText)) {
    row_.fields.resize(typeCodes_.size());
}

bool TextRowScanner::next() {
    if (!lines_.next(row_.line)) return false;
    row_.row = nextRow_;
    row_.fieldCount = 0;
    row_.badField = 0;
    row_.isTabMissing = false;
    row_.isCrlf = false;
    row_.isBlankBehind = false;
    if (row_.line.kind == TextLine::Kind::kNuls) {
        row_.form = Form::kNuls;
    } else if (row_.line.kind == TextLine::Kind::kEndless) {
        row_.form = Form::kEndless;
        ++nextRow_;
    } else if (isEmptyLine()) {
        row_.form = Form::kEmpty;
    } else {
        row_.form = Form::kWhole;
        takeFields();
        parseFields();
        ++nextRow_;
    }
    return true;
}

/// A line feed with a TAB behind it is the value of a column of characters.
bool TextRowScanner::isEmptyLine() {
    const std::string_view text = row_.line.text;
    if (!isAllBlank(text) || text.find('\t') != std::string_view::npos) return false;
    const bool isValue = !typeCodes_.empty() && isCharacter(typeCodes_.front()) && text == "\n" &&
                         lines_.peek(row_.line) == '\t';
    return !isValue;
}

void TextRowScanner::takeFields() {
    std::size_t at = 0;
    for (std::size_t column = 0; column < typeCodes_.size(); ++column) {
        const bool isTaken =
            isCharacter(typeCodes_[column]) ? takeCharacter(column, at) : takeField(column, at);
        if (!isTaken) return;
    }
    endRow(at);
}

bool TextRowScanner::stop(Form form) {
    row_.form = form;
    return false;
}

bool TextRowScanner::addField(std::size_t column, std::size_t begin, std::size_t end) {
    row_.fields[column].begin = begin;
    row_.fields[column].size = end - begin;
    row_.fieldCount = column + 1;
    return true;
}

/// @param at  goes behind the field and its TAB
bool TextRowScanner::takeField(std::size_t column, std::size_t& at) {
    const std::string_view text = row_.line.text;
    const std::size_t found = findEnd(text, at);
    if (found == text.size()) return stop(Form::kCut);
    const std::size_t begin = at;
    if (text[found] == '\t') {
        at = found + 1;
        return addField(column, begin, found);
    }
    const std::size_t end = found > begin && text[found - 1] == '\r' ? found - 1 : found;
    if (isAllBlank(text.substr(begin, end - begin))) return stop(Form::kTooFew);
    at = end;
    row_.isTabMissing = true;
    addField(column, begin, end);
    return column + 1 == typeCodes_.size() || stop(Form::kTooFew);
}

/// Any byte is a character if a TAB follows it.
bool TextRowScanner::takeCharacter(std::size_t column, std::size_t& at) {
    const auto charAt = [this](std::size_t i) {
        return i < row_.line.text.size() ? row_.line.text[i] : '\0';
    };
    const std::size_t size = row_.line.text.size();
    if (at == size) return stop(Form::kCut);
    if (charAt(at) == '\n' && lines_.peek(row_.line) == '\t') lines_.extend(row_.line);
    if (charAt(at + 1) == '\t') {
        at += 2;
        return addField(column, at - 2, at - 1);
    }
    const bool isLast = column + 1 == typeCodes_.size();
    if (at + 1 == row_.line.text.size() && charAt(at) != '\t' && charAt(at) != '\n') {
        if (!isLast) return stop(Form::kCut);
        row_.isTabMissing = true;
        ++at;
        return addField(column, at - 1, at);
    }
    return takeField(column, at);
}

void TextRowScanner::endRow(std::size_t at) {
    const std::string_view rest = row_.line.text.substr(at);
    row_.isCrlf = rest.ends_with("\r\n");
    if (rest.empty() || rest == "\n" || rest == "\r\n") return;
    if (isAllBlank(rest) && rest.find('\t') == std::string_view::npos) {
        row_.isBlankBehind = true;
        return;
    }
    row_.form = Form::kTooMany;
    const auto tabs = static_cast<std::size_t>(std::count(rest.begin(), rest.end(), '\t'));
    const std::size_t last = rest.rfind('\t');
    const bool isOpen = !isAllBlank(rest.substr(last == std::string_view::npos ? 0 : last));
    row_.fieldCount += tabs + (isOpen ? 1 : 0);
}

void TextRowScanner::parseFields() {
    const std::size_t count = std::min(row_.fieldCount, row_.fields.size());
    row_.badField = row_.fields.size();
    for (std::size_t i = 0; i < count; ++i) {
        TextField& field = row_.fields[i];
        parseField(typeCodes_[i], row_.textOf(field), field);
        if (!field.isReadable() && row_.badField == row_.fields.size()) row_.badField = i;
    }
}

}  // namespace SensorFileTool
