#pragma once

#include "tools/check/SectionMap.hpp"
#include "tools/check/TextField.hpp"
#include "tools/check/TextLines.hpp"

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

namespace SensorFileTool {

/// A line of a text recording's samples, taken apart.
struct TextRow {
    enum class Form {
        kWhole,  ///< a field for each column
        kEmpty,  ///< blanks alone
        kTooFew,
        kTooMany,
        kCut,      ///< begun; the file, or what is readable of it, ends
        kNuls,     ///< no line, but NUL bytes
        kEndless,  ///< a line longer than any row
    };

    Form form = Form::kWhole;
    TextLine line;
    std::int64_t row = 0;           ///< from 0; lines that are no row have the number of the next
    std::size_t fieldCount = 0;     ///< that were found
    std::vector<TextField> fields;  ///< of the columns, fieldCount at most
    bool isTabMissing = false;      ///< behind the last field
    bool isCrlf = false;
    bool isBlankBehind = false;  ///< between the last field and the line end
    std::size_t badField = 0;    ///< the first field that is no value of its column; or fieldCount

    /// Whether it holds a value for each column.
    [[nodiscard]] bool isUsable() const {
        return form == Form::kWhole && badField == fields.size() && !line.isBehindNuls;
    }
    [[nodiscard]] std::int64_t offsetOf(const TextField& field) const {
        return line.offset + static_cast<std::int64_t>(field.begin);
    }
    [[nodiscard]] std::string_view textOf(const TextField& field) const {
        return line.text.substr(field.begin, field.size);
    }
};

/// Reads a text recording line by line: where a reader, which takes values however they stand,
/// would lose its way, this goes on with the next line. Lines that a writer wrote are rows, and
/// give the values that a reader gives.
class TextRowScanner {
 public:
    /// @throws Poco::FileException (or one derived) naming the path; as next()
    TextRowScanner(const std::string& path, const SectionMap& map);

    /// @return false at the end of the file
    bool next();
    [[nodiscard]] const TextRow& row() const { return row_; }
    /// Lines that are rows, whole or not.
    [[nodiscard]] std::int64_t getRowCount() const { return nextRow_; }

 private:
    void takeFields();
    bool takeField(std::size_t column, std::size_t& at);
    bool takeCharacter(std::size_t column, std::size_t& at);
    bool stop(TextRow::Form form);
    bool addField(std::size_t column, std::size_t begin, std::size_t end);
    void endRow(std::size_t at);
    void parseFields();
    [[nodiscard]] bool isEmptyLine();

    std::vector<int> typeCodes_;
    TextLines lines_;
    TextRow row_;
    std::int64_t nextRow_ = 0;
};

}  // namespace SensorFileTool
