#pragma once

#include "sensorfile/BlockFileStream.hpp"

#include <cstddef>
#include <string>
#include <string_view>

namespace SensorFileTool {

/// Writes bytes to a file in large blocks.
class BlockWriter {
 public:
    /// Creates or empties the file.
    /// @throws Poco::FileException (or one derived) naming the path; as the other functions
    explicit BlockWriter(const std::string& path);

    void write(std::string_view bytes);
    /// After the last bytes.
    void close();

 private:
    void flush();

    SensorFile::BlockOutputStream file_;
    std::string block_;
};

}  // namespace SensorFileTool
