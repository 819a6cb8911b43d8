#pragma once

#include "sensorfile/SensorFileConfig.hpp"
#include "tools/recording/Row.hpp"

#include <cstddef>
#include <string_view>
#include <vector>

namespace SensorFileTool {

/// Some rows column by column, little-endian: what formats get that hold columns as wholes.
class ColumnBlock {
 public:
    explicit ColumnBlock(const SensorFile::SensorFileConfig& config);

    /// @param row  of the columns; there is room for it
    void add(const Row& row);
    [[nodiscard]] bool isFull() const { return rowCount_ == capacity_; }
    [[nodiscard]] std::size_t getRowCount() const { return rowCount_; }
    /// The values of a column.
    [[nodiscard]] std::string_view getBytes(std::size_t column) const;
    void clear() { rowCount_ = 0; }

 private:
    std::vector<std::size_t> sizes_;
    std::vector<std::vector<char>> bytes_;
    std::size_t capacity_ = 0;
    std::size_t rowCount_ = 0;
};

}  // namespace SensorFileTool
