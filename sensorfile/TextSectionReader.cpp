#include "sensorfile/TextSectionReader.hpp"

#include "sensorfile/BareCalibValues.hpp"
#include "sensorfile/ColumnType.hpp"
#include "sensorfile/FormatException.hpp"
#include "sensorfile/NumberText.hpp"
#include "sensorfile/SensorFileConfig.hpp"

#include <algorithm>
#include <charconv>
#include <limits>
#include <string_view>
#include <system_error>
#include <utility>
#include <vector>

#include <Poco/Exception.h>

namespace SensorFile {
namespace {

using Traits = std::istream::traits_type;

/// No word or name of a section is longer; what is longer is no section.
constexpr std::size_t kMaxWord = std::size_t{64} * 1024;
/// Rows times columns of a matrix stay below this.
constexpr std::int64_t kMaxElements = std::numeric_limits<std::int32_t>::max();
/// Sides of a matrix without values, which nothing in the file bears out; writing each of its rows
/// as an empty line would take as many bytes. Binary sections have no longer sides either.
constexpr std::int64_t kMaxEmptySide = 255;

constexpr const char* kCalibValue = "a calibration value";

bool isBlank(int c) {
    return c == ' ' || (c >= '\t' && c <= '\r');
}

bool parseHex(std::string_view digits, std::uint32_t& value) {
    const char* const last = digits.data() + digits.size();
    const auto result = std::from_chars(digits.data(), last, value, 16);
    return result.ec == std::errc{} && result.ptr == last;
}

template <typename T>
std::from_chars_result parse(const char* first, const char* last, T& value) {
    if constexpr (std::is_same_v<T, double>) return parseDouble(first, last, value);
    if constexpr (std::is_integral_v<T>) return parseInteger(first, last, value);
}

}  // namespace

/// The next character, or eof, which the stream then says, too.
int TextSectionReader::peek() {
    const int c = stream_.good() ? stream_.rdbuf()->sgetc() : Traits::eof();
    if (c == Traits::eof()) stream_.setstate(std::ios::eofbit | std::ios::failbit);
    return c;
}

void TextSectionReader::skip() {
    stream_.rdbuf()->sbumpc();
}

void TextSectionReader::skipBlanks() {
    while (isBlank(peek()))
        skip();
}

void TextSectionReader::skipWords(int count) {
    for (; count > 0; --count) {
        skipBlanks();
        while (peek() != Traits::eof() && !isBlank(peek()))
            skip();
    }
}

void TextSectionReader::expect(char wanted) {
    skipBlanks();
    if (peek() != Traits::to_int_type(wanted)) {
        throw FormatException(std::string("expected '") + wanted + "' in the calibration section");
    }
    skip();
}

/// Of an endless word the first kMaxWord characters: that other files hold such is no error of a
/// section.
std::string TextSectionReader::takeWord() {
    std::string word;
    skipBlanks();
    for (int c = peek(); c != Traits::eof() && !isBlank(c) && word.size() < kMaxWord; c = peek()) {
        word.push_back(Traits::to_char_type(c));
        skip();
    }
    return word;
}

/// A word within a section.
std::string TextSectionReader::takeNumberWord() {
    std::string word = takeWord();
    if (word.size() == kMaxWord) throw FormatException("section holds an endless word");
    return word;
}

/// Everything up to the next TAB, which is passed.
std::string TextSectionReader::takeField() {
    std::string field;
    for (int c = peek(); c != '\t'; c = peek()) {
        if (c == Traits::eof()) throw FormatException("section ends early");
        if (field.size() == kMaxWord) throw FormatException("section holds an endless field");
        field.push_back(Traits::to_char_type(c));
        skip();
    }
    skip();
    return field;
}

SectionOpening TextSectionReader::readOpening() {
    skipWords(2);
    for (const std::uint32_t magic : kSectionMagic) {
        std::uint32_t word = 0;
        if (!parseHex(takeWord(), word) || word != magic) return {};
    }
    const std::string last = takeWord();
    std::uint32_t id = 0;
    std::uint32_t version = 0;
    if (last.size() < 8 || !parseHex(std::string_view(last).substr(0, 4), id) ||
        !parseHex(std::string_view(last).substr(4, 4), version)) {
        return {};
    }
    return {static_cast<std::uint16_t>(id), static_cast<std::uint16_t>(version)};
}

std::int64_t TextSectionReader::takeInteger(const char* what) {
    std::string digits;
    skipBlanks();
    for (int c = peek(); (c >= '0' && c <= '9') || (digits.empty() && (c == '-' || c == '+'));
         c = peek()) {
        if (digits.size() == kMaxWord) throw FormatException("section holds an endless number");
        digits.push_back(Traits::to_char_type(c));
        skip();
    }
    std::int64_t value = 0;
    const auto result = parseInteger(digits.data(), digits.data() + digits.size(), value);
    if (result.ec != std::errc{}) throw FormatException(std::string("no number for ") + what);
    return value;
}

int TextSectionReader::takeDatePart() {
    const std::int64_t part = takeInteger("a date");
    // Far from any date, and small enough for an int.
    return part < -1 || part > 1'000'000 ? -1 : static_cast<int>(part);
}

/// A whole word: of "1,5" or "3.7" for an integer nothing is taken, rather than the beginning.
template <typename T>
T TextSectionReader::takeNumber(const char* what) {
    const std::string word = takeNumberWord();
    const char* const last = word.data() + word.size();
    T value{};
    const auto result = parse(word.data(), last, value);
    if (result.ec != std::errc{} || result.ptr != last) {
        throw FormatException(std::string("no number for ") + what);
    }
    return value;
}

/// Numbers with a single character between, whatever it is.
SectionDate TextSectionReader::takeDate() {
    SectionDate date;
    int* const parts[] = {&date.day,  &date.month,  &date.year,
                          &date.hour, &date.minute, &date.second};
    for (int* const part : parts) {
        if (part != &date.day) skip();
        *part = takeDatePart();
    }
    return date;
}

void TextSectionReader::readHeader() {
    config_.setCreationTime(takeDate().toDateTime());
    skipWords(2);
    config_.setSampleFrequency(takeNumber<double>("the sample frequency"));
    skipWords(1);
    const std::int64_t count = takeInteger("the column count");
    if (count < 0) throw FormatException("column count is negative");
    takeField();
    for (std::int64_t i = 0; i < count; ++i) {
        const std::string name = takeField();
        const std::string typeName = takeField();
        takeField();  // the size, which follows from the type
        config_.addColumn(name, typeName);
    }
}

void TextSectionReader::readCalib() {
    skipWords(2);
    config_.setCalibTime(takeDate().toDateTime());
    skipWords(2);
    const std::int64_t format = takeInteger("the calibration format");
    if (!std::in_range<std::uint16_t>(format)) {
        throw FormatException("calibration format does not fit its 16 bits");
    }
    config_.setCalibFormat(static_cast<std::uint16_t>(format));
    skipWords(4);
    if (isBareCalibVersion(config_.getCalibVersion())) {
        readBareValues();
        return;
    }
    const std::int64_t count = takeInteger("the count of calibration records");
    if (count < 0) throw FormatException("count of calibration records is negative");
    for (std::int64_t i = 0; i < count; ++i)
        readRecord();
}

void TextSectionReader::readRecord() {
    skipBlanks();
    const std::string name = takeField();
    const std::string typeName = takeField();
    if (typeName != "double" && typeName != "int32") {
        throw Poco::DataException("Data type format is not supported!");
    }
    expect('(');
    const std::int64_t rows = takeInteger("a matrix's rows");
    expect(',');
    const std::int64_t cols = takeInteger("a matrix's columns");
    expect(')');
    if (rows < 0 || cols < 0 || rows > kMaxElements || cols > kMaxElements) {
        throw FormatException("a matrix has an impossible size");
    }
    if (typeName == "double") {
        readMatrix<double>(name, rows, cols);
    } else {
        readMatrix<int>(name, rows, cols);
    }
}

template <typename T>
void TextSectionReader::readMatrix(const std::string& name, std::int64_t rows, std::int64_t cols) {
    const bool isEmpty = rows == 0 || cols == 0;
    if (isEmpty ? std::max(rows, cols) > kMaxEmptySide : cols > kMaxElements / rows) {
        throw FormatException("a matrix has an impossible size");
    }
    std::vector<T> values;
    for (std::int64_t i = 0; i < rows * cols; ++i)
        values.push_back(takeNumber<T>(kCalibValue));
    using Matrix = Eigen::Matrix<T, Eigen::Dynamic, Eigen::Dynamic>;
    using RowByRow = Eigen::Matrix<T, Eigen::Dynamic, Eigen::Dynamic, Eigen::RowMajor>;
    config_.addCalibData(
        name, Matrix(Eigen::Map<const RowByRow>(values.data(), static_cast<Eigen::Index>(rows),
                                                static_cast<Eigen::Index>(cols))));
}

void TextSectionReader::readBareValues() {
    const std::int64_t count = takeInteger("the count of calibration values");
    if (count < 0) throw FormatException("count of calibration values is negative");
    BareCalibValues values(config_, config_.getCalibVersion());
    for (std::int64_t i = 0; i < count; ++i)
        values.add(takeNumber<double>(kCalibValue));
}

}  // namespace SensorFile
