/// Reads a hostile CSV file. The first byte of the input chooses separator, header and decimal
/// sign, the second the type of the columns and the size of the blocks in which the file is read,
/// the rest is the file.
///
/// Records, lists and numbers are read a second time in the plainest way and compared to the bit.
/// Beyond that: what does not fit its type is refused with its column, and the same file gives the
/// same rows again.

#include "fuzz/CsvPlain.hpp"
#include "fuzz/Harness.hpp"
#include "fuzz/PlainNumber.hpp"
#include "sensorfile/BlockSize.hpp"
#include "tools/import/CellReader.hpp"
#include "tools/import/ColumnGuess.hpp"
#include "tools/import/CsvTable.hpp"
#include "tools/import/StampSteps.hpp"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdint>
#include <limits>
#include <optional>
#include <string>
#include <vector>

#include <Poco/Exception.h>

namespace {

using Fuzz::PlainCsv;
using Fuzz::PlainRecord;
using Fuzz::require;
using Fuzz::WholeNumber;
using SensorFileTool::CsvDialect;
using SensorFileTool::CsvNumber;
using SensorFileTool::CsvNumberStyle;
using SensorFileTool::CsvOptions;
using SensorFileTool::CsvReader;
using SensorFileTool::CsvTable;
using SensorFileTool::Row;
using Kind = CsvNumber::Kind;

constexpr const char* kName = "input";
constexpr std::array kSeparators = {',', ';', '\t', SensorFileTool::kCsvBlanks};

CsvOptions optionsOf(std::uint8_t choice) {
    CsvOptions options;
    if ((choice & 4) != 0) options.separator = kSeparators[choice & 3];
    if ((choice & 8) != 0) options.hasHeader = (choice & 16) != 0;
    options.style.hasDecimalComma = (choice & 32) != 0;
    return options;
}

// ---- Numbers ----

/// What a cell stands for, found out in the plainest way.
struct PlainCell {
    Kind kind = Kind::kBlank;
    WholeNumber whole;
    int decimals = 0;
    std::optional<double> value;
    std::optional<float> single;
};

/// The exponent of a number, as large as a double's at most.
int exponentOf(const std::string& number) {
    const std::size_t mark = number.find_first_of("eE");
    if (mark == std::string::npos) return 0;
    const std::string text = number.substr(mark + (number[mark + 1] == '+' ? 2 : 1));
    const std::optional<WholeNumber> exponent = Fuzz::readInteger(text);
    constexpr std::uint64_t kMost = 400;
    const auto size = static_cast<int>(
        exponent->isBeyond ? kMost : std::min<std::uint64_t>(exponent->magnitude, kMost));
    return exponent->isNegative ? -size : size;
}

PlainCell readPlainly(std::string_view cell, const CsvNumberStyle& style) {
    PlainCell plain;
    if (cell.empty()) return plain;
    const char point = style.hasDecimalComma ? ',' : '.';
    std::string number(cell);
    const std::string unsignedText(Fuzz::withoutSign(cell));
    const std::string word = Fuzz::toLower(unsignedText);
    if (Fuzz::isDecimal(unsignedText, point)) {
        std::replace(number.begin(), number.end(), ',', '.');
        plain.value = Fuzz::readDouble(number);
        plain.single = Fuzz::readFloat(number);
        if (std::isinf(*plain.value)) plain.value.reset();
        if (std::isinf(*plain.single)) plain.single.reset();
        const auto whole = Fuzz::readInteger(unsignedText);
        plain.kind = Kind::kReal;
        if (whole) {
            plain.whole = *whole;
            plain.whole.isNegative = cell[0] == '-';
            const bool isMinusZero = plain.whole.isNegative && whole->magnitude == 0;
            if (!whole->isBeyond && !isMinusZero) plain.kind = Kind::kInteger;
        } else {
            const std::size_t at = unsignedText.find(point);
            const std::size_t end = std::min(unsignedText.find_first_of("eE"), unsignedText.size());
            const int behind = at == std::string::npos ? 0 : static_cast<int>(end - at) - 1;
            plain.decimals = std::max(behind - exponentOf(unsignedText), 0);
        }
    } else if (word == "nan" || word == "inf" || word == "infinity") {
        plain.kind = Kind::kReal;
        plain.value = word == "nan" ? std::numeric_limits<double>::quiet_NaN()
                                    : std::numeric_limits<double>::infinity();
        if (cell[0] == '-') plain.value = -*plain.value;
        plain.single = static_cast<float>(*plain.value);
    } else if (word.size() == cell.size() && (word == "true" || word == "false")) {
        plain.kind = Kind::kWord;
        plain.whole.magnitude = word == "true" ? 1 : 0;
        plain.value = word == "true" ? 1.0 : 0.0;
        plain.single = word == "true" ? 1.0F : 0.0F;
    } else {
        plain.kind = Kind::kText;
    }
    return plain;
}

void checkNumber(std::string_view cell, const CsvNumberStyle& style, const PlainCell& plain) {
    const CsvNumber number = SensorFileTool::scanNumber(cell, style);
    require(number.kind == plain.kind, "a cell of another kind");
    if (number.kind == Kind::kInteger || number.kind == Kind::kWord)
        require(number.magnitude == plain.whole.magnitude &&
                    number.isNegative == plain.whole.isNegative,
                "another whole number");
    if (number.kind == Kind::kReal)
        require(number.decimals == plain.decimals, "another count of decimals");
    double value = 0.0;
    float single = 0.0F;
    const bool isRead = readDouble(cell, style, value);
    require(isRead == plain.value.has_value(), "a number is read or not");
    if (isRead) require(Fuzz::isSame(value, *plain.value), "another number than by strtod");
    const bool isSingleRead = readFloat(cell, style, single);
    require(isSingleRead == plain.single.has_value(), "a float is read or not");
    if (isSingleRead)
        require(Fuzz::isSame(static_cast<double>(single), static_cast<double>(*plain.single)),
                "another float than by strtof");
}

// ---- Types ----

template <class T>
bool fitsAs(const WholeNumber& whole, int code, std::initializer_list<int> codes) {
    return std::find(codes.begin(), codes.end(), code) != codes.end() && whole.fits<T>();
}

bool fits(const WholeNumber& whole, int code) {
    if (code == 10) return whole.fits<std::uint8_t>() && whole.magnitude <= 1;
    return fitsAs<std::uint8_t>(whole, code, {2, 11}) ||
           fitsAs<std::int8_t>(whole, code, {3, 12}) ||
           fitsAs<std::uint16_t>(whole, code, {4, 13}) ||
           fitsAs<std::int16_t>(whole, code, {5, 14}) || fitsAs<std::uint32_t>(whole, code, {6}) ||
           fitsAs<std::int32_t>(whole, code, {7}) || fitsAs<std::uint64_t>(whole, code, {15}) ||
           fitsAs<std::int64_t>(whole, code, {16});
}

/// The whole number that a cell stands for, if it is one.
std::optional<WholeNumber> wholeOf(const PlainCell& cell) {
    constexpr double kExact = 9007199254740992.0;
    if (cell.kind == Kind::kInteger || cell.kind == Kind::kWord) return cell.whole;
    if (cell.kind != Kind::kReal || !cell.value) return std::nullopt;
    const double value = *cell.value;
    if (!(std::abs(value) <= kExact) || std::floor(value) != value) return std::nullopt;
    WholeNumber whole;
    whole.isNegative = value < 0.0;
    whole.magnitude = static_cast<std::uint64_t>(std::abs(value));
    return whole;
}

constexpr int kFloat = 8;
constexpr int kDouble = 9;

/// Whether the cell can be a value of the type, which is then compared with the row's.
bool checkTyped(const PlainCell& cell, int code, const Row& row, std::size_t column, bool isTaken) {
    constexpr double kNan = std::numeric_limits<double>::quiet_NaN();
    const bool isBlank = cell.kind == Kind::kBlank;
    if (code == kDouble || code == kFloat) {
        std::optional<double> value = cell.value;
        if (code == kFloat)
            value = cell.single ? std::optional(static_cast<double>(*cell.single)) : std::nullopt;
        if (isBlank) value = kNan;
        if (value && isTaken)
            require(Fuzz::isSame(row.getValue(column), *value), "another value in the row");
        return value.has_value();
    }
    const std::optional<WholeNumber> whole = wholeOf(cell);
    if (!whole || !fits(*whole, code)) return false;
    if (isTaken && row.isWide(column))
        require(row.getBits(column) == whole->to<std::uint64_t>(), "other bits in the row");
    if (isTaken && !row.isWide(column))
        require(row.getValue(column) ==
                    (whole->isNegative ? -1.0 : 1.0) * static_cast<double>(whole->magnitude),
                "another whole value in the row");
    return true;
}

/// Finds the type that fits all of a column's cells.
int guessPlainly(const std::vector<PlainCell>& cells) {
    bool hasInteger = false;
    bool hasWord = false;
    const auto areAll = [&](int code) {
        return std::all_of(cells.begin(), cells.end(), [code](const PlainCell& cell) {
            return cell.kind == Kind::kText || fits(cell.whole, code);
        });
    };
    for (const PlainCell& cell : cells) {
        if (cell.kind == Kind::kReal || cell.kind == Kind::kBlank) return kDouble;
        hasInteger = hasInteger || cell.kind == Kind::kInteger;
        hasWord = hasWord || cell.kind == Kind::kWord;
    }
    if (!hasInteger) return hasWord ? 10 : kDouble;
    for (const int code : {7, 16, 15})
        if (areAll(code)) return code;
    return kDouble;
}

// ---- Records ----

void checkFields(const std::vector<std::string_view>& fields, const PlainRecord& plain) {
    require(std::equal(fields.begin(), fields.end(), plain.fields.begin(), plain.fields.end()),
            "other fields");
}

void checkRecords(const std::string& path, const PlainCsv& plain, char separator) {
    try {
        CsvReader reader(path, kName, separator);
        require(!plain.isWide, "UTF-16 text is taken");
        for (const PlainRecord& record : plain.records) {
            require(reader.next(), "a record less");
            require(reader.line() == record.line, "a record in another line");
            require(reader.problem().has_value() == record.problem.has_value(),
                    "a record is spoilt or not");
            if (record.problem)
                require(reader.problem()->field == *record.problem, "spoilt by another field");
            else
                checkFields(reader.fields(), record);
        }
        require(!reader.next() && !plain.brokenLine, "a record more");
    } catch (const Poco::DataFormatException& error) {
        const std::string line =
            plain.brokenLine ? "line " + std::to_string(*plain.brokenLine) + ":" : "UTF-16";
        require(plain.isWide || plain.brokenLine, "a file is refused");
        require(error.message().find(line) != std::string::npos, "refused at another place");
    }
}

void checkSample(const CsvDialect& dialect, const PlainCsv& plain) {
    require(dialect.sample.size() == std::min<std::size_t>(plain.records.size(), 100),
            "a sample of another size");
    for (std::size_t i = 0; i < dialect.sample.size(); ++i) {
        require(dialect.sample[i].line == plain.records[i].line, "a sample of another line");
        if (!plain.records[i].problem)
            require(dialect.sample[i].fields == plain.records[i].fields, "a sample of others");
    }
}

// ---- Rows ----

class TableCheck {
 public:
    TableCheck(const PlainCsv& plain, const CsvDialect& dialect, const CsvNumberStyle& style,
               int typeCode)
        : plain_(plain), dialect_(dialect), style_(style), typeCode_(typeCode) {}

    void check(const std::string& path) {
        CsvTable table(path, kName, dialect_);
        findLists();
        std::size_t columnCount = 0;
        for (const std::size_t size : listSizes_)
            columnCount += std::max<std::size_t>(size, 1);
        require(table.columns().size() == columnCount, "another count of columns");
        columns_.resize(columnCount);
        prepare(table);
        for (std::size_t i = dialect_.hasHeader ? 1 : 0; i < plain_.records.size(); ++i) {
            require(table.next(), "a row less");
            require(table.reader().line() == plain_.records[i].line, "a row in another line");
            checkRow(table, cellsOf(plain_.records[i]));
        }
        require(!table.next() && !plain_.brokenLine, "a row more");
        checkGuesses();
    }

 private:
    using Cells = std::optional<std::vector<std::string>>;

    void findLists() {
        const std::size_t fieldCount = dialect_.sample.front().fields.size();
        for (std::size_t field = 0; field < fieldCount; ++field) {
            std::size_t size = 0;
            for (std::size_t i = dialect_.hasHeader ? 1 : 0; i < dialect_.sample.size(); ++i) {
                const std::vector<std::string>& fields = dialect_.sample[i].fields;
                if (field >= fields.size() || fields[field].empty()) continue;
                size = Fuzz::splitPlainList(fields[field]).size();
                break;
            }
            listSizes_.push_back(size);
        }
    }

    /// The row's cells; nothing if the row is spoilt.
    [[nodiscard]] Cells cellsOf(const PlainRecord& record) const {
        if (record.problem) return std::nullopt;
        std::vector<std::string> fields = record.fields;
        if (fields.size() == listSizes_.size() + 1 && fields.back().empty()) fields.pop_back();
        if (fields.size() != listSizes_.size()) return std::nullopt;
        std::vector<std::string> cells;
        for (std::size_t field = 0; field < fields.size(); ++field) {
            const std::size_t size = listSizes_[field];
            if (size == 0) {
                cells.push_back(fields[field]);
                continue;
            }
            std::vector<std::string> elements = Fuzz::splitPlainList(fields[field]);
            if (fields[field].empty()) elements.resize(size);
            if (elements.size() != size) return std::nullopt;
            cells.insert(cells.end(), elements.begin(), elements.end());
        }
        return cells;
    }

    void prepare(const CsvTable& table) {
        SensorFile::SensorFileConfig config;
        std::vector<SensorFileTool::ImportColumn> columns;
        for (std::size_t i = 0; i < table.columns().size(); ++i) {
            config.addColumn("c", typeCode_);
            columns.push_back({i, "c", typeCode_});
            guesses_.emplace_back(true);
        }
        row_ = Row(config);
        cells_.emplace(std::move(columns), style_, "");
    }

    void checkRow(const CsvTable& table, const Cells& expected) {
        require(table.defect().has_value() == !expected.has_value(), "a row is spoilt or not");
        if (!expected) {
            require(!table.describe(*table.defect()).empty(), "spoilt without a word");
            return;
        }
        require(std::equal(expected->begin(), expected->end(), table.cells().begin(),
                           table.cells().end()),
                "other cells");
        std::vector<PlainCell> plain;
        for (std::size_t i = 0; i < expected->size(); ++i) {
            const std::string& cell = (*expected)[i];
            plain.push_back(readPlainly(cell, style_));
            checkNumber(cell, style_, plain.back());
            columns_[i].push_back(plain.back());
            guesses_[i].add(cell, style_, table.reader().line());
        }
        if (!expected->empty()) steps_.add(expected->front(), style_);
        checkValues(table, plain);
    }

    void checkValues(const CsvTable& table, const std::vector<PlainCell>& plain) {
        const auto defect = cells_->read(table.cells(), row_);
        std::optional<std::size_t> bad;
        for (std::size_t i = 0; i < plain.size() && !bad; ++i)
            if (!checkTyped(plain[i], typeCode_, row_, i, !defect)) bad = i;
        require(defect.has_value() == bad.has_value(), "a cell fits its type or not");
        if (defect) require(defect->column == bad, "another cell does not fit");
    }

    void checkGuesses() {
        for (std::size_t i = 0; i < guesses_.size(); ++i)
            require(guesses_[i].getTypeCode() == guessPlainly(columns_[i]), "another type");
        const std::optional<double> frequency = steps_.measure(kDouble, 100.0);
        require(!frequency || (std::isfinite(*frequency) && *frequency > 0.0),
                "a frequency that is none");
    }

    const PlainCsv& plain_;
    const CsvDialect& dialect_;
    const CsvNumberStyle style_;
    const int typeCode_;
    std::vector<std::size_t> listSizes_;
    std::vector<std::vector<PlainCell>> columns_;
    std::vector<SensorFileTool::ColumnGuess> guesses_;
    Row row_;
    std::optional<SensorFileTool::CellReader> cells_;
    SensorFileTool::StampSteps steps_{{}};
};

void checkFile(const std::string& path, std::string_view text, const CsvOptions& options,
               int typeCode) {
    try {
        const CsvDialect dialect = detectDialect(path, kName, options);
        require(std::find(kSeparators.begin(), kSeparators.end(), dialect.separator) !=
                    kSeparators.end(),
                "a separator that is none");
        require(!options.separator || dialect.separator == *options.separator, "another separator");
        require(!options.hasHeader || dialect.hasHeader == *options.hasHeader, "another header");
        const PlainCsv plain = Fuzz::readPlainCsv(text, dialect.separator);
        checkSample(dialect, plain);
        checkRecords(path, plain, dialect.separator);
        TableCheck(plain, dialect, options.style, typeCode).check(path);
    } catch (const Poco::DataFormatException& error) {
        const std::string& message = error.message();
        require(message.starts_with(std::string(kName) + ": "), "refused without the file");
        const PlainCsv plain = Fuzz::readPlainCsv(text, options.separator.value_or(','));
        const bool isUnread = plain.isWide || plain.brokenLine.has_value() || plain.records.empty();
        const bool hasBadHeader = !plain.records.empty() && plain.records.front().problem;
        if (options.separator) require(isUnread || hasBadHeader, "a good file is refused");
    }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    if (size < 2) return 0;
    constexpr std::array<std::size_t, 4> kBlockSizes = {1, 7, 64, 4096};
    constexpr int kFirstType = 2;
    constexpr int kTypes = 15;
    // Longer files show nothing more; this one still has a number of more than a thousand digits.
    constexpr std::size_t kLongest = 1536;
    const std::string_view text = Fuzz::toText(data + 2, std::min(size - 2, kLongest));
    const std::string path = Fuzz::scratchPath("input.csv");
    Fuzz::writeFile(path, text);
    SensorFile::BlockSize::replace(kBlockSizes[data[1] / 64]);
    checkFile(path, text, optionsOf(data[0]), kFirstType + data[1] % kTypes);
    return 0;
}
