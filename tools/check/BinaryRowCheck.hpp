#pragma once

#include "sensorfile/InputBlock.hpp"
#include "tools/check/ColumnRule.hpp"
#include "tools/check/SectionMap.hpp"

#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <vector>

namespace SensorFileTool {

/// The end of a recording's rows that nobody recorded: a crash leaves zeros where the system had
/// made room for rows that never came.
struct ZeroTail {
    std::int64_t firstRow = 0;
    std::int64_t rowCount = 0;  ///< whole rows; 0: there is no such tail
    bool isProven = false;      ///< a counter or a time stamp would have gone on otherwise
};

/// Looks at the rows of a binary recording, block by block and in a block column by column.
class BinaryRowCheck {
 public:
    /// All must outlive this.
    /// @param rules  of the recording's columns
    BinaryRowCheck(const std::string& path, const SectionMap& map,
                   std::vector<std::unique_ptr<ColumnRule>>& rules, DefectList& defects);

    /// Once.
    /// @param onBlock  called with the bytes that were looked at, now and then
    /// @throws Poco::FileException (or one derived) naming the path
    void run(const std::function<void(std::int64_t)>& onBlock);

    /// With those of zeros.
    [[nodiscard]] std::int64_t getRowCount() const { return rowCount_; }
    [[nodiscard]] const ZeroTail& getZeroTail() const { return zeroTail_; }

 private:
    struct Rows {
        const char* first = nullptr;
        std::size_t count = 0;
        std::int64_t row = 0;
    };

    void lookAtBlock(const char* block, std::size_t count);
    void searchSections(std::size_t bytes);
    void lookAt(const Rows& rows);
    void endZeros(bool isAtEnd);
    void tellZeros(std::int64_t first, std::int64_t count, bool isProven);
    void tellRest();
    [[nodiscard]] bool isZero(const char* row) const;
    [[nodiscard]] bool isZeroRefused() const;
    [[nodiscard]] std::int64_t offsetOf(std::int64_t row) const;

    SensorFile::InputBlock file_;
    const SectionMap& map_;
    std::vector<std::unique_ptr<ColumnRule>>& rules_;
    DefectList& defects_;
    std::vector<std::size_t> columnOffsets_;  ///< in a row
    std::size_t rowSize_ = 0;
    bool isSequence_ = false;       ///< a column grows from row to row
    std::int64_t minZeroRows_ = 1;  ///< fewer may have been recorded
    std::int64_t rowCount_ = 0;
    std::int64_t zeroStart_ = 0;  ///< rows of zeros not yet judged
    std::int64_t zeroCount_ = 0;
    ZeroTail zeroTail_;
    std::vector<char> buffer_;  ///< the end of the block before, and a block of whole rows
};

}  // namespace SensorFileTool
