#pragma once

#include <cstdint>
#include <fstream>
#include <string>
#include <string_view>

namespace SensorFileTool {

/// A file that is written in large pieces and can be gone back into.
class ByteFile {
 public:
    /// @throws Poco::WriteFileException naming the path, here and below
    explicit ByteFile(const std::string& path);

    void append(std::string_view bytes) {
        if (buffer_.size() + bytes.size() > buffer_.capacity()) flush();
        buffer_.append(bytes);
    }
    /// Puts bytes where some are already, or will be.
    void overwrite(std::uint64_t offset, std::string_view bytes);
    /// Bytes that append() was given.
    [[nodiscard]] std::uint64_t getSize() const { return written_ + buffer_.size(); }
    void close();

 private:
    void flush();
    void requireGood();

    std::string path_;
    std::ofstream stream_;
    std::string buffer_;
    std::uint64_t written_ = 0;
};

}  // namespace SensorFileTool
