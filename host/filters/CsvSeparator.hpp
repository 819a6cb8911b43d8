#pragma once

#include "framework/Export.hpp"

#include <string>

namespace Quoril::Core {

/// What stands between two fields of a line: one character, or a run of blanks.
class QUORIL_CORE_API CsvSeparator {
 public:
    /// The comma.
    CsvSeparator() = default;

    /// @param text  one character; "\t" (a backslash and a t) or "tab" for a tab; " " or "blanks"
    ///              for any run of spaces and tabs
    /// @throws Poco::DataFormatException if the text is none of these, or a character that occurs
    ///         in numbers and names, a quote or '#'
    static CsvSeparator parse(const std::string& text);

    /// True: fields are separated by runs of spaces and tabs, and no field is empty.
    [[nodiscard]] bool isBlanks() const noexcept { return character_ == ' '; }
    [[nodiscard]] char getCharacter() const noexcept { return character_; }

    /// Whether the character may stand around a field without belonging to it.
    [[nodiscard]] bool isPadding(char c) const noexcept {
        return c == ' ' || (c == '\t' && character_ != '\t');
    }

 private:
    explicit CsvSeparator(char character) : character_(character) {}

    char character_ = ',';
};

}  // namespace Quoril::Core
