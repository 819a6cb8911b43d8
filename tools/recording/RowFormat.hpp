#pragma once

#include "sensorfile/SensorFileConfig.hpp"
#include "tools/recording/Row.hpp"

#include <cstddef>
#include <memory>
#include <string>
#include <vector>

namespace SensorFileTool {

/// How rows are written as text.
enum class RowFormat {
    kCsv,        ///< a header line; fields with commas, quotes or line ends in quotes
    kTsv,        ///< the same with tabs
    kJsonLines,  ///< an object a row; what a number of JSON cannot hold is text
};

/// Turns chosen columns of rows into lines.
class RowText {
 public:
    /// @param columns  indexes, in the order in which they are written
    RowText(RowFormat format, const SensorFile::SensorFileConfig& config,
            std::vector<std::size_t> columns);

    /// Nothing for JSON lines.
    void appendHeader(std::string& text) const;
    void appendRow(std::string& text, const Row& row);

 private:
    char* formatPlain(char* out, const Row& row) const;
    char* formatJson(char* out, const Row& row) const;

    RowFormat format_;
    char separator_;
    std::vector<std::size_t> columns_;
    std::vector<std::string> names_;  ///< as the format writes them
    std::vector<char> line_;          ///< room for any row
};

}  // namespace SensorFileTool
