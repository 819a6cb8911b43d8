#pragma once

#include "tools/import/CsvTable.hpp"

#include <cstddef>
#include <optional>
#include <string>
#include <vector>

namespace SensorFileTool {

/// A column of a CSV file that goes into a recording.
struct ImportColumn {
    std::size_t cell = 0;  ///< its place in the table's rows
    std::string name;      ///< in the recording
    std::optional<int> typeCode;
};

/// The columns that the user wants, in the order asked for.
///
/// A column is meant by its name; by that of a field that is a list, which means all its elements;
/// or, if no column has such a name, by the field's position from 1 on.
/// @param choice  "NAME", "NAME=TYPE" and so on, separated by commas; empty: all columns
/// @param renaming  "NAME=NEW" and so on, separated by commas
/// @throws UsageException "--columns: ..." or "--rename: ..." telling an item that means no column,
///         a type that is none, or a column that is named twice
[[nodiscard]] std::vector<ImportColumn> chooseImportColumns(const std::vector<CsvColumn>& columns,
                                                            const std::string& choice,
                                                            const std::string& renaming);

}  // namespace SensorFileTool
