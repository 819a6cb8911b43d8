#include "tools/common/TextTable.hpp"

#include "text/VisibleText.hpp"

#include <algorithm>
#include <utility>

namespace SensorFileTool {

namespace {

constexpr std::size_t kGap = 2;  // blanks between columns

/// Characters of UTF-8, as far as a terminal gives each one place.
std::size_t widthOf(const std::string& text) {
    constexpr unsigned kMask = 0xc0;
    constexpr unsigned kContinuation = 0x80;
    return static_cast<std::size_t>(std::count_if(text.begin(), text.end(), [](char letter) {
        return (static_cast<unsigned char>(letter) & kMask) != kContinuation;
    }));
}

}  // namespace

TextTable::TextTable(std::vector<std::string> titles, std::size_t indent) : indent_(indent) {
    rows_.push_back(std::move(titles));
}

void TextTable::addRow(std::vector<std::string> cells) {
    std::transform(cells.begin(), cells.end(), cells.begin(), Texts::toVisible);
    rows_.push_back(std::move(cells));
}

std::string TextTable::toText() const {
    std::vector<std::size_t> widths(rows_.front().size());
    for (const std::vector<std::string>& row : rows_)
        for (std::size_t i = 0; i < row.size(); ++i)
            widths[i] = std::max(widths[i], widthOf(row[i]));
    std::string text;
    for (const std::vector<std::string>& row : rows_) {
        text.append(indent_, ' ');
        for (std::size_t i = 0; i < row.size(); ++i) {
            const std::size_t blanks = widths[i] - widthOf(row[i]);
            if (i > 0) text.append(kGap + blanks, ' ');
            text += row[i];
            if (i == 0 && row.size() > 1) text.append(blanks, ' ');
        }
        text += '\n';
    }
    return text;
}

}  // namespace SensorFileTool
