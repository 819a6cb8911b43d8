#include "host/filters/CsvFields.hpp"

#include <algorithm>

namespace Quoril::Core {

CsvFields::CsvFields(std::string_view line, CsvSeparator separator)
    : line_(line), separator_(separator) {}

bool CsvFields::next() {
    if (!hasNext_) return false;
    skipPadding();
    if (separator_.isBlanks() && position_ == line_.size()) {
        hasNext_ = false;
        return false;
    }
    isQuoted_ = position_ < line_.size() && line_[position_] == '"';
    if (isQuoted_)
        takeQuoted();
    else
        takePlain();
    return true;
}

void CsvFields::takePlain() {
    const std::size_t start = position_;
    position_ = findSeparator();
    std::size_t end = position_;
    while (end > start && separator_.isPadding(line_[end - 1]))
        --end;
    text_ = line_.substr(start, end - start);
    passSeparator();
}

void CsvFields::takeQuoted() {
    const std::size_t start = position_ + 1;
    std::size_t end = line_.find('"', start);
    while (end != std::string_view::npos && line_.substr(end + 1).starts_with('"'))
        end = line_.find('"', end + 2);
    if (end == std::string_view::npos) {
        text_ = line_.substr(start);
        problem_ = Problem::kQuoteNotClosed;
        hasNext_ = false;
        return;
    }
    text_ = line_.substr(start, end - start);
    position_ = end + 1;
    endQuoted();
}

void CsvFields::endQuoted() {
    const std::size_t afterQuote = position_;
    skipPadding();
    const bool isSeparated = position_ > afterQuote && separator_.isBlanks();
    if (position_ < line_.size() && line_[position_] != separator_.getCharacter() && !isSeparated) {
        problem_ = Problem::kTextAfterQuote;
        hasNext_ = false;
        return;
    }
    passSeparator();
}

void CsvFields::passSeparator() {
    if (separator_.isBlanks()) return;
    hasNext_ = position_ < line_.size();
    ++position_;
}

void CsvFields::skipPadding() {
    while (position_ < line_.size() && separator_.isPadding(line_[position_]))
        ++position_;
}

std::size_t CsvFields::findSeparator() const {
    const std::size_t found = separator_.isBlanks()
                                  ? line_.find_first_of(" \t", position_)
                                  : line_.find(separator_.getCharacter(), position_);
    return std::min(found, line_.size());
}

std::string CsvFields::getUnquotedText() const {
    std::string text(text_);
    if (!isQuoted_) return text;
    for (std::size_t at = text.find("\"\""); at != std::string::npos;
         at = text.find("\"\"", at + 1))
        text.erase(at, 1);
    return text;
}

}  // namespace Quoril::Core
