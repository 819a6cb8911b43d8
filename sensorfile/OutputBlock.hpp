#pragma once

#include "sensorfile/BlockFileStream.hpp"

#include <cstddef>
#include <cstdint>
#include <streambuf>
#include <string>
#include <vector>

namespace SensorFile {

/// A file's output buffer that knows where rows end: only whole rows leave it before close(), a
/// begun row can be taken back, and an error leaves what the file did not take in the buffer, so
/// that nothing is lost or written twice when there is space again.
class OutputBlock : public std::streambuf {
 public:
    OutputBlock() = default;

    /// Creates or empties the file.
    /// @throws Poco::FileException (or one derived) naming the path
    void open(const std::string& path);

    /// Writes everything and closes the file. When the file does not take it, a regular file is
    /// cut back to its last whole row.
    /// @throws Poco::FileException; closed all the same
    void close();

    /// The place for `size` more bytes; commit() the end of what was put there.
    /// @throws Poco::FileException if the buffer is full and the file cannot take it
    /// @throws Poco::InvalidAccessException if not open
    char* reserve(std::size_t size) {
        if (size > static_cast<std::size_t>(epptr() - pptr())) makeRoom(size);
        return pptr();
    }
    void commit(const char* end) { pbump(static_cast<int>(end - pptr())); }

    /// From here on the file holds rows: of rowSize bytes, or lines when rowSize is 0.
    void startRows(std::size_t rowSize);
    /// Everything so far is whole rows.
    void markRow() { rowEnd_ = static_cast<std::size_t>(pptr() - pbase()); }
    /// The next `size` bytes are a row; the same as commit() and markRow().
    void commitRow(std::size_t size) {
        pbump(static_cast<int>(size));
        markRow();
    }
    /// Takes back what came after the last mark.
    void dropRow() { commit(pbase() + rowEnd_); }
    /// Hands all whole rows to the system in one call.
    void flushRows();

 protected:
    int_type overflow(int_type c) override;

 private:
    void makeRoom(std::size_t size);
    [[nodiscard]] std::size_t alignedRows() const;
    void handOver(std::size_t size);
    void discard(std::size_t size);
    [[nodiscard]] std::uint64_t lastRowEnd() const;
    void cutBack();

    std::string path_;
    BlockOutputStream file_;
    std::vector<char> storage_;
    std::size_t blockSize_ = 0;
    std::uint64_t fileSize_ = 0;   ///< bytes that the file has taken
    std::size_t rowEnd_ = 0;       ///< from the buffer's start
    std::uint64_t rowsStart_ = 0;  ///< from the file's start
    std::size_t rowSize_ = 0;
    std::uint64_t lineEnd_ = 0;  ///< end of the last whole line that the file has taken
};

}  // namespace SensorFile
