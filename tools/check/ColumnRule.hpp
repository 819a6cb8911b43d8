#pragma once

#include "tools/check/DefectList.hpp"
#include "tools/recording/CounterColumn.hpp"
#include "tools/recording/TimeColumn.hpp"

#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <vector>

namespace SensorFileTool {

/// Values of one column in successive binary rows.
struct ColumnSpan {
    const char* first = nullptr;  ///< the first row's value
    std::size_t count = 0;        ///< of rows
    std::size_t rowSize = 0;      ///< bytes
    std::int64_t offset = 0;      ///< of the first value, from the start of the file
    std::int64_t row = 0;         ///< the number of the first row
    bool isBigEndian = true;

    [[nodiscard]] Place placeOf(std::size_t index) const {
        return {offset + static_cast<std::int64_t>(index * rowSize),
                row + static_cast<std::int64_t>(index)};
    }
};

/// One rule for the values of one column, which it gets in the order of the rows.
class ColumnRule {
 public:
    explicit ColumnRule(std::size_t column) : column_(column) {}
    ColumnRule(const ColumnRule&) = delete;
    ColumnRule& operator=(const ColumnRule&) = delete;
    virtual ~ColumnRule() = default;

    [[nodiscard]] std::size_t getColumn() const { return column_; }

    virtual void scan(const ColumnSpan& span) = 0;
    /// A value read from text.
    /// @param bits  its bits if the column holds 64-bit integers
    virtual void take(double value, std::uint64_t bits, const Place& place) = 0;
    /// Rows follow that were not looked at.
    virtual void interrupt() {}
    /// After the last row.
    virtual void finish() {}
    /// Whether the values grow from row to row.
    [[nodiscard]] virtual bool isSequence() const { return false; }
    /// False if a row of zeros cannot come next: a counter or a time stamp goes on otherwise.
    [[nodiscard]] virtual bool canBeZero() const { return true; }

 private:
    std::size_t column_;
};

/// What is known of the columns.
struct ColumnRoles {
    std::vector<CounterColumn> counters;
    std::optional<TimeColumn> time;
};

/// All rules that fit a recording's columns.
/// @param defects  gets what is found; must outlive the rules, as the configuration
[[nodiscard]] std::vector<std::unique_ptr<ColumnRule>> makeColumnRules(
    const SensorFile::SensorFileConfig& config, bool isBinary, const ColumnRoles& roles,
    DefectList& defects);

}  // namespace SensorFileTool
