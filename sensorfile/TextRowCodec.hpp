#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

namespace SensorFile {

class SensorFileConfig;

/// Values to the text of a text file and back. May be used from any thread.
class TextRowCodec {
 public:
    /// Without columns: every value is refused.
    TextRowCodec();
    explicit TextRowCodec(const SensorFileConfig& config);

    /// Room that any value's text needs, without a separator.
    [[nodiscard]] std::size_t maxValueSize() const { return maxValueSize_; }

    /// Writes one value as the text of its column, without a separator.
    /// @param value double, float, std::int64_t or std::uint64_t
    /// @param out room for maxValueSize() characters
    /// @return the end of the text
    /// @throws Poco::RangeException if the value does not fit
    /// @throws Poco::InvalidAccessException if there are no columns
    template <typename T>
    char* format(std::size_t column, T value, char* out) const;

    /// Writes the values of neighbouring columns, each as format() does, and a TAB after each.
    /// @param first the first value's column
    /// @param bits the whole row's 64-bit integers, one per column, which the values only hold
    ///        rounded; nullptr takes the values
    /// @param out room for maxValueSize() + 1 characters for each value
    /// @return the end of the text
    /// @throws as format()
    char* formatValues(std::size_t first, std::span<const double> values, const std::uint64_t* bits,
                       char* out) const;

    /// Reads values as streams extract them, as far as each is followed by a blank before `last`:
    /// what is cut off by the end or is no plain number is left to the stream itself.
    /// @param column the first value's column; moved on to the first that was not read
    /// @param row one value per column; only those read are set
    /// @param bits the same for the bits of 64-bit integers; nullptr where nobody wants them
    /// @return the end of what was read
    const char* parse(const char* first, const char* last, double* row, std::uint64_t* bits,
                      std::size_t& column) const noexcept;

 private:
    /// What a column of integers of up to 32 bits can hold. No other column has any.
    struct Range {
        std::int64_t lowest = 1;
        std::int64_t highest = -1;

        [[nodiscard]] bool isEmpty() const { return highest < lowest; }
        [[nodiscard]] bool holds(std::int64_t value) const {
            return value >= lowest && value <= highest;
        }
        /// Whether a number that is truncated is within.
        [[nodiscard]] bool holds(double value) const {
            return value > static_cast<double>(lowest) - 1.0 &&
                   value < static_cast<double>(highest) + 1.0;
        }
    };

    static Range rangeOf(int typeCode);
    const char* parseShorts(const char* first, const char* last, double* row,
                            std::size_t& column) const noexcept;

    std::vector<int> typeCodes_;  ///< per column; 0 stands for no columns
    std::vector<Range> ranges_;
    int precision_ = 0;
    std::size_t maxValueSize_;
};

}  // namespace SensorFile
