#pragma once

#include "framework/Export.hpp"

#include <cstdint>
#include <fstream>
#include <string>
#include <string_view>
#include <vector>

namespace Quoril::Core {

/// The lines of a CSV file that hold something: empty lines, lines of blanks alone and lines that
/// begin with '#' are passed over.
///
/// A line ends with LF or CR LF; the last one needs no end. A UTF-8 byte-order mark is skipped. The
/// file is read in blocks and never goes back, so that a pipe can be read too; memory stays the
/// same however long the file is. One thread at a time.
class QUORIL_CORE_API CsvReader {
 public:
    /// Longest line, in bytes: a longer one is no table of numbers, and must not fill the memory.
    static constexpr std::size_t kMaxLineLength = 1U << 20U;

    /// How many bytes are read at once: enough that the system calls do not count beside the
    /// parsing.
    static constexpr std::size_t kBlockSize = std::size_t{256} * 1024;

    /// Opens the file.
    /// @param blockSize  at least 1; tests make it small, so that lines lie across blocks
    /// @throws Poco::IOException if it is missing, a folder, unreadable or has no bytes
    /// @throws Poco::DataFormatException if it is UTF-16 text
    explicit CsvReader(const std::string& path, std::size_t blockSize = kBlockSize);
    CsvReader(const CsvReader&) = delete;
    CsvReader& operator=(const CsvReader&) = delete;

    /// Goes to the next line; false at the end of the file.
    /// @throws Poco::IOException if reading fails
    /// @throws Poco::DataFormatException if the line is longer than kMaxLineLength
    [[nodiscard]] bool next();

    /// The present line without its end; valid until the next call of next().
    [[nodiscard]] std::string_view getLine() const noexcept { return line_; }
    /// Its number in the file, from 1, with the lines that were passed over counted.
    [[nodiscard]] std::uint64_t getLineNumber() const noexcept { return lineNumber_; }
    [[nodiscard]] const std::string& getPath() const noexcept { return path_; }

 private:
    void open();
    void skipByteOrderMark();
    bool nextAnyLine();
    bool refill();
    void makeRoom();
    void setLine(std::size_t length);

    const std::string path_;
    std::ifstream stream_;
    std::vector<char> buffer_;
    std::size_t begin_ = 0;  ///< of what is not handed out yet, in buffer_
    std::size_t end_ = 0;    ///< of what was read
    std::string_view line_;
    std::uint64_t lineNumber_ = 0;
};

}  // namespace Quoril::Core
