#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace Fuzz {

/// A record of a CSV file, read in the plainest way.
struct PlainRecord {
    std::uint64_t line = 0;  ///< from 1
    std::vector<std::string> fields;
    std::optional<std::size_t> problem;  ///< the field that spoils the record
};

/// A CSV file, character by character.
struct PlainCsv {
    bool isWide = false;  ///< UTF-16 text, and therefore not read
    std::vector<PlainRecord> records;
    /// The line of a record that ends the reading: a quote in it is not closed.
    std::optional<std::uint64_t> brokenLine;
};

/// Records are lines, or several with the line ends within quotes. Blanks around fields, lines of
/// blanks and lines that begin with '#' do not count; two quotes within quotes are one.
/// @param separator  a blank: any blanks and tabs
[[nodiscard]] PlainCsv readPlainCsv(std::string_view text, char separator);

/// The elements of "[1, 2; 3 4]"; nothing if the text is no list or one without elements.
[[nodiscard]] std::vector<std::string> splitPlainList(std::string_view text);

}  // namespace Fuzz
