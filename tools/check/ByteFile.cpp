#include "tools/check/ByteFile.hpp"

#include <cerrno>
#include <system_error>

#include <Poco/Exception.h>

namespace SensorFileTool {

namespace {

constexpr std::size_t kBufferSize = std::size_t{256} * 1024;

}  // namespace

ByteFile::ByteFile(const std::string& path) : path_(path) {
    // Pieces go straight to the system.
    stream_.rdbuf()->pubsetbuf(nullptr, 0);
    stream_.open(path, std::ios::binary | std::ios::trunc);
    requireGood();
    buffer_.reserve(kBufferSize);
}

void ByteFile::overwrite(std::uint64_t offset, std::string_view bytes) {
    flush();
    stream_.seekp(static_cast<std::streamoff>(offset));
    stream_.write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
    requireGood();
    stream_.seekp(static_cast<std::streamoff>(written_));
    requireGood();
}

void ByteFile::close() {
    flush();
    stream_.close();
    requireGood();
}

void ByteFile::flush() {
    stream_.write(buffer_.data(), static_cast<std::streamsize>(buffer_.size()));
    requireGood();
    written_ += buffer_.size();
    buffer_.clear();
}

void ByteFile::requireGood() {
    if (!stream_)
        throw Poco::WriteFileException(path_, std::generic_category().message(errno), errno);
}

}  // namespace SensorFileTool
