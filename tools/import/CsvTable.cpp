#include "tools/import/CsvTable.hpp"

#include "text/VisibleText.hpp"

#include <algorithm>
#include <cctype>
#include <utility>

#include <Poco/Exception.h>
#include <fmt/format.h>

namespace SensorFileTool {

namespace {

bool isControl(char c) {
    constexpr unsigned char kFirstPrintable = 0x20;
    constexpr char kDelete = 0x7f;
    return static_cast<unsigned char>(c) < kFirstPrintable || c == kDelete;
}

}  // namespace

std::string withoutControls(std::string_view text) {
    std::string clean(text);
    std::replace_if(clean.begin(), clean.end(), isControl, ' ');
    return clean;
}

std::string elementName(const std::string& name, std::size_t element) {
    const bool endsWithDigit =
        !name.empty() && std::isdigit(static_cast<unsigned char>(name.back())) != 0;
    return name + (endsWithDigit ? "_" : "") + std::to_string(element);
}

std::string shortenText(std::string_view text) {
    constexpr std::size_t kMaxText = 40;
    constexpr unsigned kContinuationMask = 0xc0;
    constexpr unsigned kContinuation = 0x80;
    if (text.size() <= kMaxText) return Texts::toVisible(text);
    // No character of UTF-8 is cut in two.
    std::size_t size = kMaxText;
    while (size > 0 &&
           (static_cast<unsigned char>(text[size]) & kContinuationMask) == kContinuation)
        --size;
    return Texts::toVisible(text.substr(0, size)) + "...";
}

std::string quoteText(std::string_view text) {
    return fmt::format("'{}'", shortenText(text));
}

std::string explainText(std::string_view text, const CsvNumberStyle& style) {
    const bool hasComma =
        !style.hasDecimalComma &&
        scanNumber(text, {.hasDecimalComma = true}).kind == CsvNumber::Kind::kReal;
    return quoteText(text) + " is no number" +
           (hasComma ? "; with --decimal-comma it would be one" : "");
}

CsvTable::CsvTable(const std::string& path, const std::string& name, CsvDialect dialect)
    : dialect_(std::move(dialect)), reader_(path, name, dialect_.separator) {
    if (dialect_.sample.empty())
        throw Poco::DataFormatException(name + ": no rows and no names are in the file");
    if (dialect_.hasHeader) {
        reader_.next();
        if (reader_.problem()) fail({std::nullopt, reader_.problem()->text});
    }
    fieldCount_ = dialect_.sample.front().fields.size();
    defineColumns();
    cells_ = &reader_.fields();
}

void CsvTable::defineColumns() {
    for (std::size_t field = 0; field < fieldCount_; ++field) {
        const std::size_t size = findListSize(field);
        listSizes_.push_back(size);
        hasLists_ = hasLists_ || size > 0;
        if (columns_.size() + size > CsvReader::kMaxFields)
            throw Poco::DataFormatException(
                fmt::format("{}: more than {} columns", reader_.getName(), CsvReader::kMaxFields));
        CsvColumn column;
        column.field = field;
        if (dialect_.hasHeader)
            column.fieldName = withoutControls(dialect_.sample.front().fields[field]);
        if (column.fieldName.empty()) column.fieldName = fmt::format("COL{}", field + 1);
        column.name = column.fieldName;
        if (size == 0) columns_.push_back(column);
        for (std::size_t element = 0; element < size; ++element) {
            column.element = element;
            column.name = elementName(column.fieldName, element);
            columns_.push_back(column);
        }
    }
}

std::size_t CsvTable::findListSize(std::size_t field) const {
    std::vector<std::string_view> elements;
    for (std::size_t i = dialect_.hasHeader ? 1 : 0; i < dialect_.sample.size(); ++i) {
        const std::vector<std::string>& fields = dialect_.sample[i].fields;
        if (field >= fields.size() || fields[field].empty()) continue;
        return splitList(fields[field], elements) ? elements.size() : 0;
    }
    return 0;
}

bool CsvTable::next() {
    if (!reader_.next()) return false;
    const std::vector<std::string_view>& fields = reader_.fields();
    defect_.reset();
    cells_ = &fields;
    if (reader_.problem()) {
        defect_ = {std::nullopt, fmt::format("field {}: {}", reader_.problem()->field + 1,
                                             reader_.problem()->text)};
        return true;
    }
    if (fields.size() == fieldCount_ + 1 && fields.back().empty()) {
        trimmed_.assign(fields.begin(), fields.end() - 1);
        cells_ = &trimmed_;
    } else if (fields.size() != fieldCount_) {
        defect_ = {std::nullopt,
                   fmt::format("{} field(s) instead of {}", fields.size(), fieldCount_)};
        return true;
    }
    if (hasLists_) expandLists();
    return true;
}

void CsvTable::expandLists() {
    expanded_.clear();
    for (std::size_t field = 0; field < fieldCount_; ++field) {
        const std::string_view text = (*cells_)[field];
        const std::size_t size = listSizes_[field];
        const std::size_t column = expanded_.size();
        if (size == 0) {
            expanded_.push_back(text);
        } else if (text.empty()) {
            expanded_.resize(column + size);
        } else if (splitList(text, elements_) && elements_.size() == size) {
            expanded_.insert(expanded_.end(), elements_.begin(), elements_.end());
        } else {
            defect_ = {column, fmt::format("{} is no list of {}", quoteText(text), size)};
            return;
        }
    }
    cells_ = &expanded_;
}

std::string CsvTable::describe(const CsvDefect& defect) const {
    if (!defect.column) return defect.cause;
    const CsvColumn& column = columns_[*defect.column];
    return fmt::format("column {} ({}): {}", column.field + 1, shortenText(column.name),
                       defect.cause);
}

void CsvTable::fail(const CsvDefect& defect) const {
    reader_.fail(describe(defect));
}

}  // namespace SensorFileTool
