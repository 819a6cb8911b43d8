#pragma once

#include "tools/import/CsvNumber.hpp"

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace SensorFileTool {

/// Finds the type of a column by its cells: whole numbers are INT32 if they fit, else INT64, else
/// UINT64; true and false are BOOL; everything else, and whole numbers with blanks between them, is
/// DOUBLE.
class ColumnGuess {
 public:
    /// @param needsDecimals  whether getDecimals() is wanted
    explicit ColumnGuess(bool needsDecimals) : needsDecimals_(needsDecimals) {}

    /// Whether further cells change nothing: it is DOUBLE.
    [[nodiscard]] bool isSettled() const { return hasReal_ && !needsDecimals_; }
    /// @param line  for getText()
    void add(std::string_view cell, const CsvNumberStyle& style, std::uint64_t line);

    /// Whether there was a number.
    [[nodiscard]] bool hasNumber() const { return hasReal_ || hasInteger_ || hasWord_; }
    /// Whether there was a cell that was not blank.
    [[nodiscard]] bool hasAny() const { return hasNumber() || textLine_ > 0; }
    /// The line of the first cell that is no number, 0 if there was none, and what is in it.
    [[nodiscard]] std::uint64_t getTextLine() const { return textLine_; }
    [[nodiscard]] const std::string& getText() const { return text_; }

    /// Of a column that has a number, or nothing at all.
    [[nodiscard]] int getTypeCode() const;
    /// Whether whole numbers beyond 2^53 are among a DOUBLE column's: they are rounded.
    [[nodiscard]] bool isRounded() const;
    /// The most digits behind a point.
    [[nodiscard]] int getDecimals() const { return decimals_; }

 private:
    void addInteger(const CsvNumber& number);

    bool needsDecimals_;
    bool hasBlank_ = false;
    bool hasReal_ = false;
    bool hasInteger_ = false;
    bool hasWord_ = false;
    std::uint64_t largest_ = 0;
    std::uint64_t mostNegative_ = 0;  ///< its magnitude
    int decimals_ = 0;
    std::uint64_t textLine_ = 0;
    std::string text_;
};

}  // namespace SensorFileTool
