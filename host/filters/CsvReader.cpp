#include "host/filters/CsvReader.hpp"

#include "host/filters/SystemPath.hpp"

#include <cerrno>
#include <cstring>
#include <system_error>

#include <Poco/Exception.h>
#include <Poco/File.h>

namespace Quoril::Core {
namespace {

bool holdsSomething(std::string_view line) {
    const std::size_t first = line.find_first_not_of(" \t");
    return first != std::string_view::npos && line[first] != '#';
}

}  // namespace

CsvReader::CsvReader(const std::string& path, std::size_t blockSize)
    : path_(path), buffer_(blockSize) {
    open();
    skipByteOrderMark();
}

void CsvReader::open() {
    const Poco::File file(path_);
    if (!file.exists()) throw Poco::IOException("CSV file '" + path_ + "' does not exist");
    if (file.isDirectory()) throw Poco::IOException("'" + path_ + "' is a folder, not a CSV file");
    errno = 0;
    stream_.open(toSystemPath(path_), std::ios::in | std::ios::binary);
    if (!stream_)
        throw Poco::IOException("CSV file '" + path_ +
                                "' cannot be opened: " + std::generic_category().message(errno));
    if (!refill()) throw Poco::IOException("CSV file '" + path_ + "' is empty");
}

void CsvReader::skipByteOrderMark() {
    while (end_ < 3 && refill()) {
    }
    const std::string_view start(buffer_.data(), end_);
    if (start.starts_with("\xFF\xFE") || start.starts_with("\xFE\xFF"))
        throw Poco::DataFormatException("CSV file '" + path_ +
                                        "' is UTF-16 text; save it as UTF-8");
    if (start.starts_with("\xEF\xBB\xBF")) begin_ = 3;
}

bool CsvReader::next() {
    while (nextAnyLine())
        if (holdsSomething(line_)) return true;
    return false;
}

bool CsvReader::nextAnyLine() {
    std::size_t searched = 0;
    for (;;) {
        const char* const start = buffer_.data() + begin_;
        const std::size_t waiting = end_ - begin_;
        if (const void* lineEnd = std::memchr(start + searched, '\n', waiting - searched)) {
            const auto length = static_cast<std::size_t>(static_cast<const char*>(lineEnd) - start);
            setLine(length);
            begin_ += length + 1;
            return true;
        }
        searched = waiting;
        if (refill()) continue;
        if (waiting == 0) return false;
        setLine(waiting);
        begin_ = end_;
        return true;
    }
}

void CsvReader::setLine(std::size_t length) {
    ++lineNumber_;
    if (length > kMaxLineLength)
        throw Poco::DataFormatException(path_ + ", line " + std::to_string(lineNumber_) +
                                        ": the line is longer than " +
                                        std::to_string(kMaxLineLength) + " bytes");
    line_ = std::string_view(buffer_.data() + begin_, length);
    if (line_.ends_with('\r')) line_.remove_suffix(1);
}

// Reads behind what waits; false at the end of the file, or when the waiting line is too long to be
// handed out anyway.
bool CsvReader::refill() {
    if (end_ - begin_ > kMaxLineLength) return false;
    makeRoom();
    stream_.read(buffer_.data() + end_, static_cast<std::streamsize>(buffer_.size() - end_));
    if (stream_.bad()) throw Poco::IOException("CSV file '" + path_ + "' cannot be read");
    const auto count = static_cast<std::size_t>(stream_.gcount());
    end_ += count;
    return count > 0;
}

void CsvReader::makeRoom() {
    if (begin_ > 0) {
        std::memmove(buffer_.data(), buffer_.data() + begin_, end_ - begin_);
        end_ -= begin_;
        begin_ = 0;
    }
    if (end_ == buffer_.size()) buffer_.resize(2 * buffer_.size());
}

}  // namespace Quoril::Core
