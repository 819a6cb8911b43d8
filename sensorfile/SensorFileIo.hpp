#pragma once

#include "sensorfile/SensorFileConfig.hpp"

#include <cstddef>
#include <cstdint>

namespace SensorFile {

/// What writer and reader share: the configuration, the flags and the position in the row.
class SensorFileIo {
 public:
    SensorFileIo(const SensorFileIo&) = delete;
    SensorFileIo& operator=(const SensorFileIo&) = delete;

    [[nodiscard]] bool isOpen() const { return isOpen_; }
    /// A copy of the configuration; the default one while closed.
    [[nodiscard]] SensorFileConfig getConfig() const { return config_; }
    /// True once all section openings have been written or read.
    [[nodiscard]] bool areHeadersValid() const { return areHeadersValid_; }
    /// The encoding of the last open().
    [[nodiscard]] bool isBinary() const { return isBinary_; }
    /// Values written or read since the sample start. Modulo the column count it is the index of
    /// the next value's column; that alone stays right in long files, since whole rows are taken
    /// off the count before it overflows.
    [[nodiscard]] std::uint32_t valueCount() const { return valueCount_ + column_; }

 protected:
    explicit SensorFileIo(bool isWriteMode) : isWriteMode_(isWriteMode) {}
    ~SensorFileIo() = default;

    /// Counts one value; true when it was the last of its row.
    bool countValue() {
        if (++column_ < columnCount_) return false;
        column_ = 0;
        countRow();
        return true;
    }
    /// Counts a whole row; only at a row's start.
    void countRow() {
        valueCount_ += columnCount_;
        if (valueCount_ >= kCountLimit) valueCount_ %= columnCount_;
    }
    /// Takes the columns from the configuration and starts at the first.
    void startSamples();
    void resetState();

    SensorFileConfig config_;
    const bool isWriteMode_;
    std::uint32_t valueCount_ = 0;  ///< of whole rows; a begun one has column_ values more
    bool isOpen_ = false;
    bool areHeadersValid_ = false;
    bool isBinary_ = false;

    std::uint32_t columnCount_ = 0;
    std::uint32_t column_ = 0;  ///< of the next value

 private:
    static constexpr std::uint32_t kCountLimit = 0x8000'0000;
};

}  // namespace SensorFile
