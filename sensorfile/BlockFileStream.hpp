#pragma once

#include <cstddef>

#include <Poco/FileStream.h>

namespace SensorFile {

/// POCO's file streams move data in pieces of 4 KiB. These move blocks of any size in one call to
/// the system, past the stream's own buffer; use either the blocks or the stream, not both.
class BlockOutputStream : public Poco::FileOutputStream {
 public:
    /// Writes at least one byte; size is not 0.
    /// @return the number of bytes written
    /// @throws Poco::FileException (or one derived) naming the path
    std::size_t writeSome(const char* data, std::size_t size);
};

class BlockInputStream : public Poco::FileInputStream {
 public:
    /// @return the number of bytes read, 0 at the end of the file
    /// @throws Poco::FileException (or one derived) naming the path
    std::size_t readSome(char* data, std::size_t size);
};

}  // namespace SensorFile
