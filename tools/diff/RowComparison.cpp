#include "tools/diff/RowComparison.hpp"

#include "tools/recording/RecordingInfo.hpp"

#include <algorithm>
#include <cmath>

namespace SensorFileTool {

RowComparison::RowComparison(Recording& a, Recording& b, const std::vector<ColumnPair>& pairs,
                             const Tolerance& tolerance, const RowRange& range)
    : a_(a), b_(b), rowsA_(a), rowsB_(b), tolerance_(tolerance), range_(range) {
    for (const ColumnPair& pair : pairs) {
        if (!pair.a || !pair.b) continue;
        pairs_.push_back(pair);
        result_.columns.push_back({});
        result_.columns.back().name = pair.name;
    }
}

RowDifferences RowComparison::run(Progress& progress, bool stopsAtFirst) {
    const bool isThereA = skipToRow(range_.first, a_, rowsA_) == range_.first;
    const bool isThereB = skipToRow(range_.first, b_, rowsB_) == range_.first;
    std::uint64_t row = range_.first;
    bool hasA = isThereA && row < range_.last && rowsA_.next();
    bool hasB = isThereB && row < range_.last && rowsB_.next();
    while (hasA && hasB) {
        compareRow(row++);
        if (stopsAtFirst && result_.first) return result_;
        hasA = row < range_.last && rowsA_.next();
        hasB = row < range_.last && rowsB_.next();
        progress.show(static_cast<std::uint64_t>(a_.getReader().position()));
    }
    result_.compared = row - range_.first;
    result_.rowsA = result_.compared;
    result_.rowsB = result_.compared;
    if (hasA) result_.rowsA = countRest(a_, rowsA_, row + 1) - range_.first;
    if (hasB) result_.rowsB = countRest(b_, rowsB_, row + 1) - range_.first;
    return result_;
}

void RowComparison::compareRow(std::uint64_t row) {
    const Row& a = rowsA_.row();
    const Row& b = rowsB_.row();
    for (std::size_t i = 0; i < pairs_.size(); ++i) {
        const std::size_t columnA = *pairs_[i].a;
        const std::size_t columnB = *pairs_[i].b;
        // Most values are equal, and few are of 64 bits.
        if (a.getValue(columnA) == b.getValue(columnB) && !a.isWide(columnA) && !b.isWide(columnB))
            continue;
        const auto difference = differenceBetween(a, columnA, b, columnB, tolerance_);
        if (difference) tellDifference(row, i, *difference);
    }
}

void RowComparison::tellDifference(std::uint64_t row, std::size_t column, double difference) {
    if (!result_.first) result_.first = {row, pairs_[column], rowsA_.row(), rowsB_.row()};
    ColumnTally& tally = result_.columns[column];
    if (tally.different++ == 0) tally.firstRow = row;
    if (difference > tally.largest) {
        tally.largest = difference;
        tally.largestRow = row;
    }
}

/// The rows of a recording up to the range's end.
/// @param read  those that were read, whether in the range or before it
std::uint64_t RowComparison::countRest(Recording& recording, RowReader& rows,
                                       std::uint64_t read) const {
    if (recording.isBinary()) return std::min(countRows(recording).rows, range_.last);
    while (read < range_.last && rows.next())
        ++read;
    return read;
}

}  // namespace SensorFileTool
