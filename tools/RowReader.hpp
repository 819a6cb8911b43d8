#pragma once

#include "tools/Recording.hpp"

#include <cstddef>
#include <cstdint>
#include <vector>

namespace SensorFileTool {

/// Reads a recording row by row without losing a digit: 64-bit integers are kept beside the
/// doubles, which hold all other types exactly.
class RowReader {
 public:
    /// @param recording  must outlive this; its rows are read from where it stands
    explicit RowReader(Recording& recording);

    /// The next whole row; false when there is none.
    /// @throws Poco::FileException (or one derived) naming the path
    bool next();

    [[nodiscard]] std::size_t getColumnCount() const { return values_.size(); }
    /// The value of a column, rounded if it is an integer above 2^53.
    [[nodiscard]] double getValue(std::size_t column) const { return values_[column]; }
    /// The 64 bits of a column of type uint64 or int64.
    [[nodiscard]] std::uint64_t getBits(std::size_t column) const { return bits_[column]; }
    [[nodiscard]] int getTypeCode(std::size_t column) const { return types_[column]; }

 private:
    bool nextByValue();

    SensorFile::SensorFileReader& reader_;
    std::vector<int> types_;
    std::vector<double> values_;
    std::vector<std::uint64_t> bits_;
    bool hasWideColumns_ = false;
};

}  // namespace SensorFileTool
