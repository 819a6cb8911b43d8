#pragma once

#include "sensorfile/SensorFileConfig.hpp"
#include "tools/import/CsvTable.hpp"
#include "tools/import/ImportColumns.hpp"
#include "tools/recording/Row.hpp"

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace SensorFileTool {

/// Turns the cells of a CSV file's rows into the values of a recording's, exactly or not at all.
/// Only floats and doubles are rounded, once.
class CellReader {
 public:
    /// @param columns  of known types
    /// @param blank  what blank cells stand for; empty: nan, where the type has one
    CellReader(std::vector<ImportColumn> columns, CsvNumberStyle style, std::string blank);

    /// Fills a row.
    /// @return what is wrong with the first bad cell, if one is; the row carries no meaning then
    [[nodiscard]] std::optional<CsvDefect> read(const std::vector<std::string_view>& cells,
                                                Row& row) const;

 private:
    bool readCell(std::string_view text, int typeCode, Row& row, std::size_t column) const;
    bool readInteger(std::string_view text, int typeCode, Row& row, std::size_t column) const;
    [[nodiscard]] std::string explain(std::string_view text, int typeCode) const;

    std::vector<ImportColumn> columns_;
    CsvNumberStyle style_;
    std::string blank_;
};

}  // namespace SensorFileTool
