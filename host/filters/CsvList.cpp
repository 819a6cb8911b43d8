#include "host/filters/CsvList.hpp"

#include "host/filters/NumberText.hpp"

#include <algorithm>

namespace Quoril::Core {

CsvList::CsvList(std::string_view rest) : rest_(rest) {}

std::optional<CsvList> CsvList::of(std::string_view field) {
    const std::string_view text = trimBlanks(field);
    if (text.size() < 2 || text.front() != '[' || text.back() != ']') return std::nullopt;
    return CsvList(trimBlanks(text.substr(1, text.size() - 2)));
}

bool CsvList::next() {
    if (rest_.empty() && !isAfterComma_) return false;
    const std::size_t end = std::min(rest_.find_first_of(", \t"), rest_.size());
    text_ = rest_.substr(0, end);
    rest_ = trimBlanks(rest_.substr(end));
    isAfterComma_ = rest_.starts_with(',');
    if (isAfterComma_) rest_ = trimBlanks(rest_.substr(1));
    return true;
}

std::size_t CsvList::count() const {
    CsvList copy = *this;
    std::size_t count = 0;
    while (copy.next())
        ++count;
    return count;
}

}  // namespace Quoril::Core
