#pragma once

#include "tools/check/ColumnRule.hpp"
#include "tools/check/FixedDigits.hpp"
#include "tools/check/TextRowScanner.hpp"

#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <vector>

namespace SensorFileTool {

/// Looks at the lines of a text recording and at the values that they hold.
class TextRowCheck {
 public:
    /// All must outlive this.
    /// @param rules  of the recording's columns
    TextRowCheck(const std::string& path, const SectionMap& map,
                 std::vector<std::unique_ptr<ColumnRule>>& rules, DefectList& defects);

    /// Once.
    /// @param onLine  called with the bytes that were looked at
    /// @throws Poco::FileException (or one derived) naming the path
    void run(const std::function<void(std::int64_t)>& onLine);

    /// Lines that are rows, whole or not.
    [[nodiscard]] std::int64_t getRowCount() const { return scanner_.getRowCount(); }

 private:
    void tellCharacterColumns();
    void lookAt(const TextRow& row);
    bool tellForm(const TextRow& row);
    void tellCount(const TextRow& row, DefectCode code);
    void tellLine(const TextRow& row);
    bool tellFields(const TextRow& row);
    void tellField(const TextRow& row, std::size_t column);
    void tellSection(const TextRow& row);
    void takeValues(const TextRow& row);
    void interrupt();
    void add(DefectCode code, const TextRow& row, const std::string& message);
    [[nodiscard]] const std::string& nameOf(std::size_t column) const;

    const SectionMap& map_;
    std::vector<std::unique_ptr<ColumnRule>>& rules_;
    DefectList& defects_;
    TextRowScanner scanner_;
    FixedDigits digits_;
    std::vector<bool> isFloating_;  ///< by column
    std::string magic_;             ///< as sections open with it
};

/// What a message shows of a text: its beginning, without control characters.
[[nodiscard]] std::string quote(std::string_view text);

}  // namespace SensorFileTool
