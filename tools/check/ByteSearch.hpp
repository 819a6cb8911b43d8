#pragma once

#include "sensorfile/InputBlock.hpp"

#include <cstdint>
#include <string>
#include <vector>

namespace SensorFileTool {

/// Looks for short runs of bytes in a file of any size.
class ByteSearch {
 public:
    /// @param file  must outlive this; stands anywhere afterwards
    /// @param wanted  any of these is found; all of the same size
    ByteSearch(SensorFile::InputBlock& file, std::vector<std::string> wanted)
        : file_(file), wanted_(std::move(wanted)) {}

    /// The offset of the first that begins at or behind an offset; -1 if there is none.
    /// @throws Poco::FileException (or one derived) naming the path
    [[nodiscard]] std::int64_t find(std::int64_t from);
    /// The start of the line that an offset is in.
    [[nodiscard]] std::int64_t lineStart(std::int64_t offset);

 private:
    SensorFile::InputBlock& file_;
    std::vector<std::string> wanted_;
};

/// What a data section's opening holds, but for its version: in binary in either byte order.
[[nodiscard]] std::vector<std::string> dataOpenings(bool binary);

}  // namespace SensorFileTool
