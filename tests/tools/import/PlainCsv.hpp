#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace SensorFileTool {

/// A record as a plain reader finds it.
struct PlainRecord {
    std::uint64_t line = 0;
    bool isBad = false;  ///< text behind a closing quote
    std::vector<std::string> fields;

    bool operator==(const PlainRecord&) const = default;
};

/// What a plain reader, which goes through the text character by character, makes of a CSV file.
struct PlainCsv {
    std::vector<PlainRecord> records;
    std::uint64_t commentCount = 0;
    bool isQuoteOpen = false;  ///< the end came within quotes

    PlainCsv(const std::string& text, char separator);
};

}  // namespace SensorFileTool
