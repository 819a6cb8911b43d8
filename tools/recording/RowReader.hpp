#pragma once

#include "tools/recording/Recording.hpp"
#include "tools/recording/Row.hpp"

#include <utility>

namespace SensorFileTool {

/// Reads a recording row by row without losing a digit.
class RowReader {
 public:
    /// @param recording  must outlive this; its rows are read from where it stands
    explicit RowReader(Recording& recording)
        : config_(recording.getConfig()),
          reader_(recording.getReader()),
          row_(recording.getConfig()) {}

    /// Goes on to the next whole row; false when there is none, and the row carries no meaning
    /// then.
    /// @throws Poco::FileException (or one derived) naming the path
    bool next() {
        return row_.hasWide() ? reader_.readRow(row_.values(), row_.bits())
                              : reader_.readRow(row_.values());
    }
    [[nodiscard]] const Row& row() const { return row_; }
    /// Hands the row over and takes another one of the same columns (or an empty one) to be filled:
    /// cheaper than a copy.
    void exchangeRow(Row& other);

 private:
    const SensorFile::SensorFileConfig& config_;
    SensorFile::SensorFileReader& reader_;
    Row row_;
};

inline void RowReader::exchangeRow(Row& other) {
    std::swap(row_, other);
    if (row_.size() != other.size()) row_ = Row(config_);
}

}  // namespace SensorFileTool
