#pragma once

#include "tools/import/CsvNumber.hpp"

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace SensorFileTool {

/// How the user says what a CSV file is like, where its first records are not to say it.
struct CsvOptions {
    std::optional<char> separator;  ///< kCsvBlanks for blanks
    std::optional<bool> hasHeader;  ///< whether the first record holds the columns' names
    CsvNumberStyle style;
};

/// A record with its line.
struct CsvRecord {
    std::vector<std::string> fields;
    std::uint64_t line = 0;
};

/// The first records of a CSV file, and what they tell about it.
struct CsvDialect {
    char separator = ',';
    bool hasHeader = false;
    std::vector<CsvRecord> sample;  ///< a few records, the header included
};

/// Finds out what separates fields, of comma, semicolon, tab and blanks: what splits the first
/// records into equally many fields, most of them numbers. The first record is a header if it has
/// texts where the second one has numbers, or texts and not one number.
/// @throws Poco::FileException, Poco::DataFormatException as CsvReader
[[nodiscard]] CsvDialect detectDialect(const std::string& path, const std::string& name,
                                       const CsvOptions& options);

/// The elements of a list such as "[1, 2, 3]"; separated by commas, semicolons or blanks. Nothing
/// if the text is no list.
/// @param elements  filled; its memory is used again
/// @return whether it is a list
bool splitList(std::string_view text, std::vector<std::string_view>& elements);

/// "comma", "semicolon", "tab", "blanks", or the character.
[[nodiscard]] std::string describeSeparator(char separator);

}  // namespace SensorFileTool
