#pragma once

#include "sensorfile/BlockFileStream.hpp"

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace SensorFileTool {

/// What separates the fields of a CSV file; a blank stands for any run of blanks and tabs.
inline constexpr char kCsvBlanks = ' ';

/// Reads a CSV file record by record, in constant memory.
///
/// A record is a line, or several if there are line ends within its quotes. Lines end with LF or
/// CR LF; the last one needs no end. Passed over are a UTF-8 byte-order mark, lines of blanks
/// alone, and lines whose first character is '#'. Blanks around a field do not belong to it, within
/// quotes neither. A field that begins with a quote ends at the next single one; two quotes in it
/// stand for one.
class CsvReader {
 public:
    /// No record is longer, in bytes: what is longer is no table, and must not fill the memory.
    static constexpr std::size_t kMaxRecord = std::size_t{4} << 20U;
    /// No record has more fields: a sensor file has no more columns.
    static constexpr std::size_t kMaxFields = 65535;

    /// A quote or a NUL byte that spoils a record.
    struct Problem {
        std::size_t field = 0;
        const char* text = nullptr;
    };

    /// @param path  of the file
    /// @param name  of the file in messages
    /// @throws Poco::FileException (or one derived) naming the path, if it cannot be read
    /// @throws Poco::DataFormatException if it is UTF-16 text
    CsvReader(const std::string& path, std::string name, char separator);

    /// Goes on to the next record; false at the end of the file.
    /// @throws Poco::DataFormatException naming file and line, if a record is too long, has too
    ///         many fields, or a quote is not closed before the end of the file
    bool next();

    /// The fields of the record, without their quotes, until the next one.
    [[nodiscard]] const std::vector<std::string_view>& fields() const { return fields_; }
    /// What is wrong with the record, if anything. Its fields carry no meaning then.
    [[nodiscard]] const std::optional<Problem>& problem() const { return problem_; }
    /// The line in which the record begins, counted from 1.
    [[nodiscard]] std::uint64_t line() const { return line_; }

    [[nodiscard]] const std::string& getName() const { return name_; }
    /// Lines passed over so far that begin with '#'.
    [[nodiscard]] std::uint64_t getCommentCount() const { return commentCount_; }
    /// Bytes of the file that were read.
    [[nodiscard]] std::uint64_t getPosition() const { return position_; }

    /// Throws a Poco::DataFormatException "NAME: line LINE: CAUSE" of the present record.
    [[noreturn]] void fail(const std::string& cause) const;

 private:
    /// Where a record ends, as far as the buffer tells.
    enum class Extent { kWhole, kCut, kOpenQuote };

    bool takeLine();
    bool takeRecord();
    void endRecord(std::size_t end, std::size_t next);
    bool refill();
    [[noreturn]] void refuseLong() const;
    Extent findQuotedEnd(std::size_t& end);
    void skipByteOrderMark();
    [[nodiscard]] std::size_t skipBlanks(std::size_t from) const;
    void splitPlain(const char* first, const char* last);
    void splitBlanks(const char* first, const char* last);
    void splitQuoted(const char* first, const char* last);
    const char* takeQuoted(const char* first, const char* last);
    void addField(const char* first, const char* last);
    [[nodiscard]] bool isPadding(char c) const {
        return c == ' ' || (c == '\t' && separator_ != '\t');
    }
    [[nodiscard]] bool isSeparator(char c) const {
        return c == separator_ || (separator_ == kCsvBlanks && c == '\t');
    }

    std::string name_;
    char separator_;
    std::size_t blockSize_;  ///< of what is read at once
    SensorFile::BlockInputStream file_;
    std::vector<char> buffer_;
    std::size_t begin_ = 0;      ///< of what is not handed out yet, in the buffer
    std::size_t end_ = 0;        ///< of what was read
    std::size_t recordEnd_ = 0;  ///< of the present record, which begins at begin_
    std::size_t nextBegin_ = 0;
    bool isFileAtEnd_ = false;
    std::size_t openField_ = 0;  ///< the one whose quote is not closed, from 0
    std::vector<std::string_view> fields_;
    std::vector<char> unquoted_;  ///< fields in which quotes were doubled
    std::size_t unquotedSize_ = 0;
    std::optional<Problem> problem_;
    std::uint64_t line_ = 0;
    std::uint64_t nextLine_ = 1;
    std::uint64_t commentCount_ = 0;
    std::uint64_t position_ = 0;
};

}  // namespace SensorFileTool
