#pragma once

#include "tools/import/CsvDialect.hpp"
#include "tools/import/CsvReader.hpp"

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace SensorFileTool {

/// A column of a table: a field of the records, or an element of a field that is a list.
struct CsvColumn {
    std::string name;       ///< of the field, or of the field with the element's number behind it
    std::string fieldName;  ///< of the header, or "COL" and its position
    std::size_t field = 0;  ///< from 0
    std::optional<std::size_t> element;  ///< from 0
};

/// What is wrong with a row.
struct CsvDefect {
    std::optional<std::size_t> column;  ///< if it is in one
    std::string cause;
};

/// The rows of a CSV file as cells, one for each column. A field that is a list in the first rows,
/// as "[1, 2, 3]", gives as many columns as it has elements.
class CsvTable {
 public:
    /// @throws Poco::FileException, Poco::DataFormatException as CsvReader; the latter also if the
    ///         file holds neither names nor rows, or lists with more elements than a sensor file
    ///         has columns
    CsvTable(const std::string& path, const std::string& name, CsvDialect dialect);

    [[nodiscard]] const std::vector<CsvColumn>& columns() const { return columns_; }
    [[nodiscard]] const CsvDialect& dialect() const { return dialect_; }

    /// Goes on to the next row; false at the end of the file.
    /// @throws as CsvReader::next()
    bool next();
    /// What is wrong with the row, if anything: quotes, or another count of fields or elements. It
    /// has no cells then. A blank field behind the last one is allowed.
    [[nodiscard]] const std::optional<CsvDefect>& defect() const { return defect_; }
    /// One for each column, until the next row.
    [[nodiscard]] const std::vector<std::string_view>& cells() const { return *cells_; }

    [[nodiscard]] const CsvReader& reader() const { return reader_; }
    /// Throws a Poco::DataFormatException that names file, line, column and cause.
    [[noreturn]] void fail(const CsvDefect& defect) const;
    [[nodiscard]] std::string describe(const CsvDefect& defect) const;

 private:
    void defineColumns();
    [[nodiscard]] std::size_t findListSize(std::size_t field) const;
    void expandLists();

    CsvDialect dialect_;
    CsvReader reader_;
    std::size_t fieldCount_ = 0;
    std::vector<std::size_t> listSizes_;  ///< of each field; 0: no list
    bool hasLists_ = false;
    std::vector<CsvColumn> columns_;
    std::optional<CsvDefect> defect_;
    std::vector<std::string_view> expanded_;
    std::vector<std::string_view> elements_;
    std::vector<std::string_view> trimmed_;
    const std::vector<std::string_view>* cells_ = nullptr;
};

/// The name of a list's element, "ACC0" of "ACC"; "COL3_0" of a name that ends with a digit.
[[nodiscard]] std::string elementName(const std::string& name, std::size_t element);

/// The text with blanks in place of control characters, which would break the lines of text files.
[[nodiscard]] std::string withoutControls(std::string_view text);

/// A text for a message: short, without control characters.
[[nodiscard]] std::string shortenText(std::string_view text);
/// The same in quotes.
[[nodiscard]] std::string quoteText(std::string_view text);

/// "'abc' is no number", with a hint where a decimal comma makes it none.
[[nodiscard]] std::string explainText(std::string_view text, const CsvNumberStyle& style);

}  // namespace SensorFileTool
