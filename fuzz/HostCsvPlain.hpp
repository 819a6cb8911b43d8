#pragma once

#include "host/filters/ColumnSelection.hpp"
#include "host/filters/CsvTable.hpp"

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace Fuzz {

struct PlainLine {
    std::string text;
    std::uint64_t number = 0;
};

struct PlainRow {
    std::vector<std::vector<double>> pins;
    double time = 0.0;
};

/// What a table of selected columns gives.
struct PlainRows {
    bool isOpened = false;       ///< the columns are there
    bool hasError = false;       ///< opening fails, or a row is met that does
    std::uint64_t badLine = 0;   ///< of the error; 0: it is none of a line
    std::vector<PlainRow> rows;  ///< before the error
};

/// The host's CSV files, read in the plainest way.
class PlainSource {
 public:
    PlainSource(std::string_view text, char separator);

    /// False for a file without a byte, or of UTF-16.
    [[nodiscard]] bool isReadable() const { return isReadable_; }
    /// Those that hold something.
    [[nodiscard]] const std::vector<PlainLine>& getLines() const { return lines_; }

    [[nodiscard]] PlainRows readRows(
        Quoril::Core::CsvHeader header, const std::vector<Quoril::Core::PinColumns>& pins,
        const std::optional<Quoril::Core::ColumnReference>& time) const;

 private:
    char separator_;
    bool isReadable_ = false;
    std::vector<PlainLine> lines_;
};

/// A text that is one number: a sign, a decimal, "inf" or "nan". Nothing if it is none, or too
/// large.
[[nodiscard]] std::optional<double> readPlainNumber(std::string_view text);

}  // namespace Fuzz
