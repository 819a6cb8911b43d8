#pragma once

#include "framework/Export.hpp"
#include "host/filters/ColumnSelection.hpp"
#include "host/filters/CsvReader.hpp"
#include "host/filters/CsvSeparator.hpp"

#include <cstddef>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace Quoril::Core {

class CsvFields;
class CsvList;

/// Whether the first line of a CSV file names the columns.
enum class CsvHeader {
    kAuto,  ///< it does if it holds a text but no number
    kYes,
    kNo
};

/// How a CSV file is to be read.
struct CsvFormat {
    CsvSeparator separator;
    CsvHeader header = CsvHeader::kAuto;
};

/// The selected columns of a CSV file, row by row.
///
/// A blank field is NaN. Columns that were not selected may hold anything, as long as their quotes
/// are closed. Once the first rows are read nothing is allocated. One thread at a time.
class QUORIL_CORE_API CsvTable {
 public:
    /// Opens the file and finds the columns.
    /// @param timeColumn  a column beside those of the pins
    /// @throws Poco::IOException as CsvReader
    /// @throws Poco::DataFormatException if the file holds no row, or lacks a column; if a list
    ///         that is selected as a whole is blank in the first row, so that its length is unknown
    CsvTable(const std::string& path, const CsvFormat& format, const std::vector<PinColumns>& pins,
             const std::optional<ColumnReference>& timeColumn);

    /// Reads the next row; false at the end of the file.
    /// @throws Poco::DataFormatException that names file, line, column and text of a bad field
    [[nodiscard]] bool next();

    /// Numbers of the pin's columns in the present row. Their count is the same in all rows, and
    /// known from construction on.
    [[nodiscard]] std::span<const double> getValues(std::size_t pin) const;

    /// Number in the time column in the present row, always finite.
    [[nodiscard]] double getTime() const { return values_.back(); }

 private:
    /// Where a selected number, or list, comes from and goes to.
    struct Slot {
        std::size_t column = 0;  ///< from 0
        ColumnReference::Part part = ColumnReference::Part::kNumber;
        std::size_t element = 0;
        std::size_t target = 0;  ///< in values_
        std::size_t count = 1;   ///< of numbers
    };

    void readFirstLines(CsvHeader header);
    [[nodiscard]] bool looksLikeHeader() const;
    [[nodiscard]] std::vector<std::string> readTexts() const;

    void planSlots(const std::vector<PinColumns>& pins,
                   const std::optional<ColumnReference>& timeColumn);
    [[nodiscard]] Slot planSlot(const ColumnReference& reference) const;
    [[nodiscard]] std::size_t findColumn(const ColumnReference& reference) const;
    [[nodiscard]] std::optional<std::size_t> findName(const std::string& name) const;
    [[nodiscard]] std::size_t countElements(const Slot& slot) const;

    void goToColumn(CsvFields& fields, std::size_t& done, std::size_t column) const;
    void checkQuotes(const CsvFields& fields, std::size_t column) const;
    void readSlot(const Slot& slot, std::string_view field);
    void readElements(const Slot& slot, CsvList list, std::string_view field);
    void readNumber(const Slot& slot, std::string_view text, double& value) const;

    [[noreturn]] void failInFile(const std::string& cause) const;
    [[noreturn]] void failInLine(std::size_t column, const std::string& cause) const;

    CsvReader reader_;
    const CsvSeparator separator_;
    std::vector<std::string> names_;      ///< empty without a header
    std::size_t columnCount_ = 0;         ///< of the first line
    bool isRowWaiting_ = true;            ///< the reader's present line was not handed out yet
    std::vector<Slot> slots_;             ///< by column
    std::vector<std::size_t> pinStarts_;  ///< in values_, with one more for the end
    std::vector<double> values_;          ///< pin by pin; the last one is the time
    bool hasTime_ = false;
};

}  // namespace Quoril::Core
