#include "host/filters/CsvTable.hpp"

#include "host/filters/CsvFields.hpp"
#include "host/filters/CsvList.hpp"
#include "host/filters/NumberText.hpp"
#include "host/filters/QuotedText.hpp"

#include <algorithm>
#include <cmath>
#include <limits>

#include <Poco/Exception.h>
#include <fmt/format.h>

namespace Quoril::Core {
namespace {

using Part = ColumnReference::Part;

// A message lists no more names of a header than fit on a screen.
constexpr std::size_t kMaxListedNames = 20;

bool isNumberOrList(std::string_view text) {
    double ignored = 0.0;
    return parseNumber(text, ignored) || CsvList::of(text).has_value();
}

}  // namespace

CsvTable::CsvTable(const std::string& path, const CsvFormat& format,
                   const std::vector<PinColumns>& pins,
                   const std::optional<ColumnReference>& timeColumn)
    : reader_(path), separator_(format.separator), hasTime_(timeColumn.has_value()) {
    readFirstLines(format.header);
    planSlots(pins, timeColumn);
}

void CsvTable::readFirstLines(CsvHeader header) {
    if (!reader_.next()) failInFile("holds no header and no rows");
    columnCount_ = readTexts().size();
    if (header == CsvHeader::kNo) return;
    if (header == CsvHeader::kAuto && !looksLikeHeader()) return;
    names_ = readTexts();
    if (!reader_.next()) failInFile("holds a header but no rows");
}

bool CsvTable::looksLikeHeader() const {
    bool hasText = false;
    CsvFields fields(reader_.getLine(), separator_);
    while (fields.next()) {
        if (isNumberOrList(fields.getText())) return false;
        hasText = hasText || !fields.getText().empty();
    }
    return hasText;
}

std::vector<std::string> CsvTable::readTexts() const {
    std::vector<std::string> texts;
    CsvFields fields(reader_.getLine(), separator_);
    while (fields.next()) {
        checkQuotes(fields, texts.size());
        texts.push_back(fields.getUnquotedText());
    }
    return texts;
}

void CsvTable::planSlots(const std::vector<PinColumns>& pins,
                         const std::optional<ColumnReference>& timeColumn) {
    std::size_t target = 0;
    const auto add = [&](const ColumnReference& reference) {
        Slot slot = planSlot(reference);
        slot.target = target;
        target += slot.count;
        slots_.push_back(slot);
    };
    for (const PinColumns& pin : pins) {
        pinStarts_.push_back(target);
        std::for_each(pin.columns.begin(), pin.columns.end(), add);
    }
    pinStarts_.push_back(target);
    if (timeColumn) add(*timeColumn);
    values_.resize(pinStarts_.back() + 1);
    std::stable_sort(slots_.begin(), slots_.end(),
                     [](const Slot& a, const Slot& b) { return a.column < b.column; });
}

CsvTable::Slot CsvTable::planSlot(const ColumnReference& reference) const {
    Slot slot;
    // A name such as "gyro[0]" may stand in the header as it is.
    const bool hasName = reference.position == 0;
    if (const auto column = hasName ? findName(reference.text) : std::nullopt) {
        slot.column = *column;
        return slot;
    }
    slot.column = findColumn(reference);
    slot.part = reference.part;
    slot.element = reference.element;
    if (slot.part == Part::kAllElements) slot.count = countElements(slot);
    return slot;
}

std::size_t CsvTable::findColumn(const ColumnReference& reference) const {
    if (reference.position > columnCount_)
        failInFile(fmt::format("has {} columns, but column {} is selected", columnCount_,
                               reference.position));
    if (reference.position > 0) return reference.position - 1;
    if (const auto column = findName(reference.name)) return *column;
    if (names_.empty())
        failInFile(
            fmt::format("has no header, so that there is no column {}; select columns by "
                        "their position (#1 to #{})",
                        quoteForMessage(reference.name), columnCount_));
    std::string known;
    for (std::size_t i = 0; i < std::min(names_.size(), kMaxListedNames); ++i)
        known += (i == 0 ? "" : ", ") + quoteForMessage(names_[i]);
    failInFile(fmt::format("has no column {}; its {} {} {}{}", quoteForMessage(reference.name),
                           names_.size(), names_.size() == 1 ? "column is" : "columns are", known,
                           names_.size() > kMaxListedNames ? ", ..." : ""));
}

std::optional<std::size_t> CsvTable::findName(const std::string& name) const {
    const auto found = std::find(names_.begin(), names_.end(), name);
    if (found == names_.end()) return std::nullopt;
    const auto again = std::find(found + 1, names_.end(), name);
    if (again != names_.end())
        failInFile(fmt::format("has two columns {}; select one by its position (#{} or #{})",
                               quoteForMessage(name), found - names_.begin() + 1,
                               again - names_.begin() + 1));
    return static_cast<std::size_t>(found - names_.begin());
}

std::size_t CsvTable::countElements(const Slot& slot) const {
    CsvFields fields(reader_.getLine(), separator_);
    std::size_t done = 0;
    goToColumn(fields, done, slot.column);
    if (fields.getText().empty())
        failInLine(slot.column,
                   "the list is blank in the first row, so that its length is not known; select "
                   "its elements one by one ([0], [1], ...)");
    const auto list = CsvList::of(fields.getText());
    if (!list) failInLine(slot.column, quoteForMessage(fields.getText()) + " is not a list");
    return list->count();
}

bool CsvTable::next() {
    if (!isRowWaiting_ && !reader_.next()) return false;
    isRowWaiting_ = false;
    CsvFields fields(reader_.getLine(), separator_);
    std::size_t done = 0;
    for (const Slot& slot : slots_) {
        goToColumn(fields, done, slot.column);
        readSlot(slot, fields.getText());
    }
    return true;
}

void CsvTable::goToColumn(CsvFields& fields, std::size_t& done, std::size_t column) const {
    while (done <= column) {
        if (!fields.next()) failInLine(column, fmt::format("the line ends after column {}", done));
        checkQuotes(fields, done);
        ++done;
    }
}

void CsvTable::checkQuotes(const CsvFields& fields, std::size_t column) const {
    if (fields.getProblem() == CsvFields::Problem::kNone) return;
    const bool isOpen = fields.getProblem() == CsvFields::Problem::kQuoteNotClosed;
    failInLine(column,
               quoteForMessage(fields.getText()) +
                   (isOpen ? " has no closing quote" : " has text after its closing quote"));
}

void CsvTable::readSlot(const Slot& slot, std::string_view field) {
    if (slot.part == Part::kNumber || field.empty()) {
        for (std::size_t i = 0; i < slot.count; ++i)
            readNumber(slot, field, values_[slot.target + i]);
        return;
    }
    const auto list = CsvList::of(field);
    if (!list) failInLine(slot.column, quoteForMessage(field) + " is not a list");
    readElements(slot, *list, field);
}

void CsvTable::readElements(const Slot& slot, CsvList list, std::string_view field) {
    const std::size_t needed = slot.part == Part::kElement ? slot.element + 1 : slot.count;
    std::size_t count = 0;
    for (; list.next(); ++count) {
        if (slot.part == Part::kElement && count == slot.element)
            return readNumber(slot, list.getText(), values_[slot.target]);
        if (slot.part == Part::kAllElements && count < needed)
            readNumber(slot, list.getText(), values_[slot.target + count]);
    }
    if (count != needed)
        failInLine(slot.column, fmt::format("{} has {} elements; {} are expected",
                                            quoteForMessage(field), count, needed));
}

void CsvTable::readNumber(const Slot& slot, std::string_view text, double& value) const {
    const bool isTime = hasTime_ && slot.target == values_.size() - 1;
    if (text.empty())
        value = std::numeric_limits<double>::quiet_NaN();
    else if (!parseNumber(text, value))
        failInLine(slot.column, quoteForMessage(text) +
                                    (CsvList::of(text) ? " is a list; select an element ([0], "
                                                         "[1], ...) or all of them ([])"
                                                       : " is not a number"));
    if (isTime && !std::isfinite(value))
        failInLine(slot.column, quoteForMessage(text) + " is no time");
}

std::span<const double> CsvTable::getValues(std::size_t pin) const {
    const std::size_t start = pinStarts_[pin];
    return std::span(values_).subspan(start, pinStarts_[pin + 1] - start);
}

void CsvTable::failInFile(const std::string& cause) const {
    throw Poco::DataFormatException("CSV file '" + reader_.getPath() + "' " + cause);
}

void CsvTable::failInLine(std::size_t column, const std::string& cause) const {
    const std::string name =
        column < names_.size() ? " (" + quoteForMessage(names_[column]) + ")" : "";
    throw Poco::DataFormatException(fmt::format("{}, line {}, column {}{}: {}", reader_.getPath(),
                                                reader_.getLineNumber(), column + 1, name, cause));
}

}  // namespace Quoril::Core
