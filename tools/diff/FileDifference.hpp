#pragma once

#include "tools/diff/RowComparison.hpp"
#include "tools/recording/RecordingInfo.hpp"

#include <string>
#include <vector>

namespace SensorFileTool {

/// All that two sensor files differ in.
struct FileDifference {
    std::string nameA;
    std::string nameB;
    Tolerance tolerance;
    std::vector<PartDifference> parts;
    RowDifferences rows;
    Rest restA;  ///< what follows the last whole row, if the rows were compared to the end
    Rest restB;

    [[nodiscard]] bool isSame() const {
        return parts.empty() && !rows.first && rows.rowsA == rows.rowsB &&
               restA.valueCount == restB.valueCount && (restA.size > 0) == (restB.size > 0);
    }
};

/// For a human reader; ends with a line end.
/// "A and B", visibly.
[[nodiscard]] std::string nameBoth(const FileDifference& difference);
[[nodiscard]] std::string differenceToText(const FileDifference& difference);
/// A JSON object on one line.
[[nodiscard]] std::string differenceToJson(const FileDifference& difference);

}  // namespace SensorFileTool
