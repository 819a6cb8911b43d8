#include "tools/check/TextRowCheck.hpp"

#include "sensorfile/ColumnType.hpp"
#include "tools/check/ByteSearch.hpp"

#include <cmath>

#include <fmt/format.h>

namespace SensorFileTool {

namespace {

using Form = TextRow::Form;

constexpr std::size_t kMaxQuote = 40;
// The three words of the magic with their TABs.
constexpr std::size_t kMagicText = 27;

bool isFloating(int typeCode) {
    return typeCode == SensorFile::kFloat || typeCode == SensorFile::kDouble;
}

}  // namespace

std::string quote(std::string_view text) {
    std::string shown = "'";
    for (const char c : text.substr(0, kMaxQuote)) {
        const auto byte = static_cast<unsigned char>(c);
        if (byte < ' ' || byte >= 0x7f)
            shown += fmt::format("\\x{:02x}", byte);
        else
            shown += c;
    }
    return shown + (text.size() > kMaxQuote ? "...'" : "'");
}

TextRowCheck::TextRowCheck(const std::string& path, const SectionMap& map,
                           std::vector<std::unique_ptr<ColumnRule>>& rules, DefectList& defects)
    : map_(map),
      rules_(rules),
      defects_(defects),
      scanner_(path, map),
      digits_(map.config.getColumnCount()),
      magic_(dataOpenings(/*binary=*/false).front().substr(0, kMagicText)) {
    for (std::size_t i = 0; i < map.config.getColumnCount(); ++i)
        isFloating_.push_back(isFloating(map.config.getColumn(i).getTypeCode()));
}

void TextRowCheck::run(const std::function<void(std::int64_t)>& onLine) {
    tellCharacterColumns();
    while (scanner_.next()) {
        lookAt(scanner_.row());
        onLine(scanner_.row().line.offset);
    }
    for (const auto& rule : rules_)
        rule->finish();
    digits_.tell(map_.config, defects_);
}

void TextRowCheck::tellCharacterColumns() {
    for (std::size_t i = 0; i < map_.config.getColumnCount(); ++i) {
        if (!isCharacter(map_.config.getColumn(i).getTypeCode())) continue;
        defects_.add(DefectCode::kCharacterColumn, {map_.headerBody}, nameOf(i), [&] {
            return fmt::format(
                "values of type {} are single characters in text: 9 to 13 and 32 "
                "do not come back",
                map_.config.getColumn(i).getTypeName());
        });
    }
}

const std::string& TextRowCheck::nameOf(std::size_t column) const {
    return map_.config.getColumn(column).getName();
}

void TextRowCheck::add(DefectCode code, const TextRow& row, const std::string& message) {
    const bool isRow = row.form != Form::kNuls && row.form != Form::kEmpty;
    defects_.add(code, {row.line.offset, isRow ? row.row : Place::kNoRow}, "",
                 [&] { return message; });
}

void TextRowCheck::lookAt(const TextRow& row) {
    if (map_.config.getColumnCount() == 0) {
        if (row.form != Form::kEmpty)
            add(DefectCode::kBytesWithoutColumns, row, "a row, and the file has no columns");
        return;
    }
    const bool isForm = tellForm(row);
    if (row.form == Form::kWhole) tellLine(row);
    const bool areFields = tellFields(row);
    if (isForm && areFields && row.isUsable())
        takeValues(row);
    else if (row.form != Form::kEmpty)
        interrupt();
}

/// @return whether the row is one
bool TextRowCheck::tellForm(const TextRow& row) {
    switch (row.form) {
        case Form::kNuls:
            add(DefectCode::kNulBytes, row,
                fmt::format("{} NUL bytes, {}", row.line.size,
                            row.line.offset + row.line.size == map_.fileSize
                                ? "up to the end of the file"
                                : "among the rows"));
            return false;
        case Form::kEmpty:
            add(DefectCode::kEmptyLine, row, "an empty line, which readers skip");
            return false;
        case Form::kEndless:
            add(DefectCode::kEndlessLine, row,
                fmt::format("a line of {} bytes is no row", row.line.size));
            return false;
        case Form::kCut:
            tellCount(row, row.line.offset + row.line.size == map_.fileSize
                               ? DefectCode::kTruncatedRow
                               : DefectCode::kTornRow);
            return false;
        case Form::kTooFew:
            tellCount(row, DefectCode::kTooFewFields);
            return false;
        case Form::kTooMany:
            tellCount(row, DefectCode::kTooManyFields);
            return false;
        default:
            break;
    }
    if (!row.line.isBehindNuls) return true;
    add(DefectCode::kTornRow, row, "its beginning may be missing: it follows NUL bytes");
    return false;
}

void TextRowCheck::tellCount(const TextRow& row, DefectCode code) {
    tellSection(row);
    const Place place{row.line.offset, row.row};
    defects_.add(code, place, "", [&] {
        return fmt::format("{} whole field(s) in place of {}: {}", row.fieldCount,
                           row.fields.size(), quote(row.line.text));
    });
}

/// Files that were put together, one behind the other.
void TextRowCheck::tellSection(const TextRow& row) {
    if (row.line.text.find(magic_) != std::string_view::npos)
        add(DefectCode::kSectionInData, row,
            "a section opens among the rows: were files put together?");
}

/// What a reader does not mind.
void TextRowCheck::tellLine(const TextRow& row) {
    if (!row.line.hasEnd()) add(DefectCode::kMissingLineEnd, row, "no line end behind a whole row");
    if (row.isTabMissing) add(DefectCode::kMissingTab, row, "no TAB behind the last field");
    if (row.isCrlf) add(DefectCode::kCrlf, row, "a row ends with CR and LF");
    if (row.isBlankBehind) add(DefectCode::kStrayBlank, row, "blanks behind the last field");
}

/// @return whether all fields are values
bool TextRowCheck::tellFields(const TextRow& row) {
    if (row.form != Form::kWhole || row.line.isBehindNuls) return false;
    bool areValues = true;
    for (std::size_t i = 0; i < row.fields.size(); ++i) {
        const TextField& field = row.fields[i];
        if (field.state != TextField::State::kGood || field.hasBlanks) tellField(row, i);
        areValues = areValues && field.isReadable();
    }
    if (!areValues) tellSection(row);
    return areValues;
}

void TextRowCheck::tellField(const TextRow& row, std::size_t column) {
    const TextField& field = row.fields[column];
    const Place place{row.offsetOf(field), row.row};
    const std::string_view text = row.textOf(field);
    const std::string& type = map_.config.getColumn(column).getTypeName();
    const auto tell = [&](DefectCode code, auto describe) {
        defects_.add(code, place, nameOf(column), describe);
    };
    switch (field.state) {
        case TextField::State::kBlankCharacter:
            tell(DefectCode::kBlankCharacter, [&] {
                return fmt::format(
                    "the character {} is white space: readers skip it, and the "
                    "values behind it move up",
                    quote(text));
            });
            return;
        case TextField::State::kOutOfRange:
            tell(DefectCode::kOutOfRange, [&] {
                return fmt::format("{} does not fit {} and is read as {}", quote(text), type,
                                   field.value);
            });
            break;
        case TextField::State::kBad:
            tell(DefectCode::kBadField,
                 [&] { return fmt::format("{} is no {}", quote(text), type); });
            return;
        default:
            break;
    }
    if (field.hasBlanks)
        tell(DefectCode::kStrayBlank,
             [&] { return fmt::format("blanks around the number in {}", quote(text)); });
}

void TextRowCheck::takeValues(const TextRow& row) {
    for (const auto& rule : rules_) {
        const TextField& field = row.fields[rule->getColumn()];
        if (field.state != TextField::State::kGood) continue;
        rule->take(field.value, field.bits, {row.offsetOf(field), row.row});
    }
    for (std::size_t i = 0; i < row.fields.size(); ++i) {
        const TextField& field = row.fields[i];
        if (isFloating_[i] && std::isfinite(field.value))
            digits_.take(i, row.textOf(field), field.value, {row.offsetOf(field), row.row});
    }
}

void TextRowCheck::interrupt() {
    for (const auto& rule : rules_)
        rule->interrupt();
}

}  // namespace SensorFileTool
