#pragma once

#include "sensorfile/BlockFileStream.hpp"

#include <cstddef>
#include <cstdint>
#include <memory>
#include <streambuf>
#include <string>

namespace SensorFile {

/// A file's input buffer: whole blocks from the system, read through a stream or directly between
/// cursor() and end(). Both ways share one position.
class InputBlock : public std::streambuf {
 public:
    InputBlock() = default;

    /// @throws Poco::FileException (or one derived) naming the path
    void open(const std::string& path);
    void close();

    /// What is in memory of the file's next bytes; perhaps nothing, before the end as well.
    [[nodiscard]] const char* cursor() const { return gptr(); }
    [[nodiscard]] const char* end() const { return egptr(); }
    /// Goes on to `to`, between cursor() and end().
    void consume(const char* to) { gbump(static_cast<int>(to - gptr())); }

    /// Reads another block behind what is left before end(), if that is little, so that a value
    /// that lies across two blocks is in one piece.
    /// @return false if too much is left or the file has ended; nothing has changed then
    /// @throws Poco::FileException (or one derived) naming the path
    bool extend();

    /// Offset in bytes of the next byte, from the start of the file.
    [[nodiscard]] std::int64_t position() const { return blockEnd_ - (egptr() - gptr()); }
    /// Goes to an offset from the start of the file.
    /// @throws Poco::FileException if the file cannot be positioned
    void seek(std::int64_t position);

 protected:
    int_type underflow() override;

 private:
    std::size_t readBlock();

    std::string path_;
    BlockInputStream file_;
    std::unique_ptr<char[]> storage_;  ///< room before the block, then the block
    std::size_t blockSize_ = 0;
    std::size_t roomBeforeBlock_ = 0;
    std::int64_t blockEnd_ = 0;  ///< offset of egptr() from the start of the file
};

}  // namespace SensorFile
