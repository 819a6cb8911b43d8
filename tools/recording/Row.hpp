#pragma once

#include "sensorfile/SensorFileConfig.hpp"

#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

namespace SensorFileTool {

/// A row of values, exact to the bit: doubles hold all column types exactly but 64-bit integers,
/// whose bits are kept beside them. Made once, filled many times.
class Row {
 public:
    Row() = default;
    /// Zeros, a value per column.
    explicit Row(const SensorFile::SensorFileConfig& config);

    [[nodiscard]] std::size_t size() const { return values_.size(); }
    [[nodiscard]] int getTypeCode(std::size_t column) const { return typeCodes_[column]; }
    /// Whether a column's values are in the bits.
    [[nodiscard]] bool isWide(std::size_t column) const;
    /// Whether any column is.
    [[nodiscard]] bool hasWide() const { return hasWide_; }

    /// The value of a column, rounded if it is an integer above 2^53.
    [[nodiscard]] double getValue(std::size_t column) const { return values_[column]; }
    /// The 64 bits of a column of type uint64 or int64.
    [[nodiscard]] std::uint64_t getBits(std::size_t column) const { return bits_[column]; }

    /// For columns that are not wide.
    void setValue(std::size_t column, double value) { values_[column] = value; }
    /// For columns of type uint64 or int64: the value follows.
    void setBits(std::size_t column, std::uint64_t bits);

    /// Room for SensorFileReader::readRow(), or what SensorFileWriter::writeRow() takes.
    [[nodiscard]] std::span<double> values() { return values_; }
    [[nodiscard]] std::span<const double> values() const { return values_; }
    [[nodiscard]] std::span<std::uint64_t> bits() { return bits_; }
    [[nodiscard]] std::span<const std::uint64_t> bits() const { return bits_; }

 private:
    std::vector<int> typeCodes_;
    std::vector<double> values_;
    std::vector<std::uint64_t> bits_;
    bool hasWide_ = false;
};

}  // namespace SensorFileTool
