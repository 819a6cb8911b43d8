#pragma once

#include "tools/Recording.hpp"
#include "tools/RowFormat.hpp"
#include "tools/RowRange.hpp"

#include <iosfwd>
#include <string>

namespace SensorFileTool {

struct CatOptions {
    std::string path;
    EncodingChoice encoding;
    RowFormat format = RowFormat::kCsv;
    RowRange rows;
    std::string columns;  ///< patterns, see chooseColumns()
    bool hasHeader = true;
};

/// Writes the rows of a recording as text.
/// @return kExitDone, or kExitProblems with a line on `errors` if the file ends within a row
/// @throws Poco::Exception as Recording, chooseColumns() and requireGood()
/// @throws Poco::DataException naming the path, if it is a file of calibrations
int cat(const CatOptions& options, std::ostream& output, std::ostream& errors);

}  // namespace SensorFileTool
