#pragma once

#include <cstddef>
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
    /// @param out room for maxValueSize() + 1 characters for each value
    /// @return the end of the text
    /// @throws as format()
    char* formatValues(std::size_t first, std::span<const double> values, char* out) const;

    /// Reads values as streams extract them, as far as each is followed by a blank before `last`:
    /// what is cut off by the end or is no plain number is left to the stream itself.
    /// @param column the first value's column; moved on to the first that was not read
    /// @param row one value per column; only those read are set
    /// @return the end of what was read
    const char* parse(const char* first, const char* last, double* row,
                      std::size_t& column) const noexcept;

 private:
    std::vector<int> typeCodes_;  ///< per column; 0 stands for no columns
    int precision_ = 0;
    std::size_t maxValueSize_;
};

}  // namespace SensorFile
