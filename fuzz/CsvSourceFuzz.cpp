/// Reads a hostile CSV file as the host's source of rows does. The first byte of the input chooses
/// separator, header and the size of the blocks in which the file is read; then follow a line with
/// the columns that form pins, a line with the column of the time stamps, and the file.
///
/// The file is read a second time in the plainest way: the same lines, the same rows to the bit, an
/// error in the same line. Beyond that: columns that are written down again mean the same, a text
/// that is refused leaves the old one, and the source sends exactly the rows before the first bad
/// one.

#include "framework/AbstractProperty.hpp"
#include "framework/OutputPin.hpp"
#include "fuzz/Harness.hpp"
#include "fuzz/HostCsvPlain.hpp"
#include "host/filters/ColumnSelection.hpp"
#include "host/filters/CsvReader.hpp"
#include "host/filters/CsvTable.hpp"
#include "host/filters/FilterCsvSource.hpp"

#include <algorithm>
#include <array>
#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include <Poco/Exception.h>

namespace {

using namespace Quoril::Core;
using Fuzz::PlainRows;
using Fuzz::PlainSource;
using Fuzz::require;

/// Longer inputs show nothing more.
constexpr std::size_t kLongest = 512;

/// Nothing if the call is refused for its format; checks that it is refused with words.
template <class Call>
auto orNothing(Call call) -> std::optional<decltype(call())> {
    try {
        return call();
    } catch (const Poco::DataFormatException& error) {
        require(!error.message().empty(), "refused without a word");
        return std::nullopt;
    }
}

// ---- Columns ----

bool isSame(const ColumnReference& one, const ColumnReference& other) {
    const bool isElement = one.part == ColumnReference::Part::kElement;
    return one.name == other.name && one.position == other.position && one.part == other.part &&
           (!isElement || one.element == other.element);
}

std::string quote(const std::string& name) {
    std::string quoted = "\"";
    for (const char c : name)
        quoted += c == '"' ? std::string("\"\"") : std::string(1, c);
    return quoted + '"';
}

std::string write(const ColumnReference& column) {
    const std::string base =
        column.position > 0 ? "#" + std::to_string(column.position) : quote(column.name);
    if (column.part == ColumnReference::Part::kAllElements) return base + " []";
    if (column.part == ColumnReference::Part::kElement)
        return base + "[" + std::to_string(column.element) + "]";
    return base;
}

std::optional<std::vector<PinColumns>> checkSelection(const std::string& text) {
    std::optional<std::vector<PinColumns>> pins;
    try {
        pins = parseColumnSelection(text);
    } catch (const Poco::DataFormatException& error) {
        const std::string start = "Column selection '" + text + "', character ";
        require(error.message().starts_with(start), "refused without the text");
        const std::size_t place = std::stoul(error.message().substr(start.size()));
        require(place >= 1 && place <= text.size() + 1, "a place outside of the text");
        return std::nullopt;
    }
    std::string again;
    for (const PinColumns& pin : *pins) {
        require(!pin.pin.empty() && !pin.columns.empty(), "a pin without name or columns");
        again += quote(pin.pin) + " = ";
        for (const ColumnReference& column : pin.columns)
            again += write(column) + (&column == &pin.columns.back() ? " ; " : " , ");
    }
    const std::vector<PinColumns> copy = parseColumnSelection(again);
    require(std::equal(pins->begin(), pins->end(), copy.begin(), copy.end(),
                       [](const PinColumns& one, const PinColumns& other) {
                           return one.pin == other.pin &&
                                  std::equal(one.columns.begin(), one.columns.end(),
                                             other.columns.begin(), other.columns.end(), isSame);
                       }),
            "written down again, the columns differ");
    return pins;
}

std::optional<ColumnReference> checkReference(const std::string& text) {
    if (text.empty()) return std::nullopt;
    std::optional<ColumnReference> column = orNothing([&] { return parseColumnReference(text); });
    if (column)
        require(isSame(parseColumnReference(write(*column)), *column),
                "written down again, the column differs");
    return column;
}

// ---- Lines ----

void checkLines(const std::string& path, const PlainSource& source, std::size_t blockSize) {
    try {
        CsvReader reader(path, blockSize);
        require(source.isReadable(), "a file without text is taken");
        for (const Fuzz::PlainLine& line : source.getLines()) {
            require(reader.next(), "a line less");
            require(reader.getLine() == line.text && reader.getLineNumber() == line.number,
                    "another line");
        }
        require(!reader.next(), "a line more");
    } catch (const Poco::Exception&) {
        require(!source.isReadable(), "a file is refused");
    }
}

// ---- Rows ----

void checkError(const Poco::Exception& error, const PlainRows& rows) {
    if (rows.badLine == 0) return;
    require(error.message().find(", line " + std::to_string(rows.badLine) + ", column ") !=
                std::string::npos,
            "an error of another line");
}

void checkTable(const std::string& path, const CsvFormat& format,
                const std::vector<PinColumns>& pins, const std::optional<ColumnReference>& time,
                const PlainRows& rows) {
    std::size_t done = 0;
    try {
        CsvTable table(path, format, pins, time);
        require(rows.isOpened, "a file that has not the columns is taken");
        for (; table.next(); ++done) {
            require(done < rows.rows.size(), "a row more");
            const Fuzz::PlainRow& row = rows.rows[done];
            for (std::size_t pin = 0; pin < pins.size(); ++pin) {
                const auto values = table.getValues(pin);
                require(std::equal(values.begin(), values.end(), row.pins[pin].begin(),
                                   row.pins[pin].end(), Fuzz::isSame),
                        "other values in a row");
            }
            if (time) require(Fuzz::isSame(table.getTime(), row.time), "another time");
        }
        require(!rows.hasError, "an error is passed over");
    } catch (const Poco::Exception& error) {
        require(rows.hasError, "a file is refused");
        checkError(error, rows);
    }
    require(done == rows.rows.size(), "a row less");
}

// ---- The source ----

/// Sets a property as the host does; whether it took the text.
bool setText(FilterCsvSource& source, const char* name, const std::string& text) {
    const AbstractProperty& property = *source.getPropertyBag()->find(name);
    std::string before;
    property.serialize(before);
    bool isTaken = true;
    try {
        property.deSerialize(text);
    } catch (const Poco::Exception&) {
        isTaken = false;
    }
    std::string after;
    property.serialize(after);
    require(after == (isTaken ? text : before), "a text stays or goes wrongly");
    return isTaken;
}

const TimeStampedData<Eigen::MatrixXd>& sampleOf(const FilterCsvSource& source, std::size_t pin) {
    return dynamic_cast<const OutputPin<Eigen::MatrixXd>&>(*source.getOutputPins()[pin])
        .getSample();
}

void checkSent(const FilterCsvSource& source, const Fuzz::PlainRow& row, double time) {
    for (std::size_t pin = 0; pin < row.pins.size(); ++pin) {
        const TimeStampedData<Eigen::MatrixXd>& sample = sampleOf(source, pin);
        require(Fuzz::isSame(sample.timeStamp, time), "sent at another time");
        require(std::equal(sample.value.data(), sample.value.data() + sample.value.size(),
                           row.pins[pin].begin(), row.pins[pin].end(), Fuzz::isSame),
                "other values are sent");
    }
}

struct Texts {
    std::string separator;
    std::string header;
    std::string columns;
    std::string time;
};

void checkSource(const std::string& path, const Texts& texts, bool hasColumns, bool isTimeGood,
                 const PlainRows& rows) {
    FilterCsvSource source("source");
    require(setText(source, FilterCsvSource::kSeparator, texts.separator), "no separator");
    require(setText(source, FilterCsvSource::kHeader, texts.header), "no header");
    require(setText(source, FilterCsvSource::kColumns, texts.columns) == hasColumns,
            "columns are taken or not");
    require(setText(source, FilterCsvSource::kTimeColumn, texts.time) == isTimeGood,
            "a time column is taken or not");
    if (!hasColumns || !isTimeGood) return;
    const std::size_t pinCount = source.getOutputPins().size();
    try {
        source.getPropertyBag()->find(FilterCsvSource::kFileName)->deSerialize(path);
        require(rows.isOpened && (pinCount == 0 || !rows.rows.empty() || !rows.hasError),
                "a bad file is taken");
    } catch (const Poco::Exception& error) {
        require(rows.hasError && rows.rows.empty(), "a good file is refused");
        checkError(error, rows);
    }
    std::size_t sent = 0;
    bool hasError = false;
    while (!source.isFinished()) {
        require(sent < rows.rows.size(), "too many rows are sent");
        try {
            source.process();
        } catch (const Poco::Exception& error) {
            hasError = true;
            checkError(error, rows);
        }
        const double time = texts.time.empty() ? static_cast<double>(sent) : rows.rows[sent].time;
        checkSent(source, rows.rows[sent], time);
        ++sent;
    }
    if (pinCount == 0) return;
    require(sent == rows.rows.size(), "rows are not sent");
    require(hasError == (rows.hasError && sent > 0), "a bad row is told or not");
    std::string shown;
    source.getPropertyBag()->find(FilterCsvSource::kRows)->serialize(shown);
    require(shown == std::to_string(sent), "another count of rows");
}

std::string takeLine(std::string_view& input) {
    const std::size_t end = std::min(input.find('\n'), input.size());
    std::string line(input.substr(0, end));
    input.remove_prefix(std::min(end + 1, input.size()));
    return line;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    constexpr std::array<const char*, 6> kSeparators = {",", ";", "tab", "blanks", "|", ":"};
    constexpr std::array<std::size_t, 4> kBlockSizes = {1, 7, 64, 4096};
    if (size < 1) return 0;
    const unsigned choice = data[0];
    std::string_view input = Fuzz::toText(data + 1, std::min(size - 1, kLongest));
    Texts texts;
    texts.separator = kSeparators[choice % kSeparators.size()];
    texts.header = std::to_string(choice / 6 % 3);
    texts.columns = takeLine(input);
    texts.time = takeLine(input);
    const std::string path = Fuzz::scratchPath("input.csv");
    Fuzz::writeFile(path, input);

    const auto pins = checkSelection(texts.columns);
    const auto time = checkReference(texts.time);
    CsvFormat format;
    format.separator = CsvSeparator::parse(texts.separator);
    format.header = static_cast<CsvHeader>(choice / 6 % 3);
    const PlainSource source(input, format.separator.getCharacter());
    checkLines(path, source, kBlockSizes[choice / 64]);
    const bool isTimeGood = texts.time.empty() || time.has_value();
    PlainRows rows;
    if (pins && isTimeGood) {
        rows = source.readRows(format.header, *pins, time);
        checkTable(path, format, *pins, time, rows);
    }
    checkSource(path, texts, pins.has_value(), isTimeGood, rows);
    return 0;
}
