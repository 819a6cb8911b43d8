#include "tools/check/TextLines.hpp"

#include <algorithm>
#include <cstring>

#include <Poco/Exception.h>

namespace SensorFileTool {

namespace {

constexpr std::size_t kBlock = std::size_t{256} * 1024;

}  // namespace

TextLines::TextLines(const std::string& path, std::int64_t start, std::size_t maxLine)
    : maxLine_(maxLine), bufferOffset_(start) {
    file_.open(path, std::ios::in);
    if (file_.rdbuf()->pubseekpos(start, std::ios::in) != std::streampos(start))
        throw Poco::ReadFileException(path);
}

/// Reads another block behind what is there; false at the end of the file.
bool TextLines::fill() {
    if (begin_ > 0) {
        std::memmove(buffer_.data(), buffer_.data() + begin_, end_ - begin_);
        bufferOffset_ += static_cast<std::int64_t>(begin_);
        end_ -= begin_;
        begin_ = 0;
    }
    if (buffer_.size() < end_ + kBlock) buffer_.resize(end_ + kBlock);
    const std::size_t count = file_.readSome(buffer_.data() + end_, kBlock);
    end_ += count;
    return count != 0;
}

/// A NUL at an index from begin_ on, with another one or nothing at all behind it.
bool TextLines::isNulRun(std::size_t at) {
    if (begin_ + at + 1 == end_ && !fill()) return true;
    return buffer_[begin_ + at + 1] == '\0';
}

/// @param from  index of the first byte that was not looked at; indexes count from begin_
/// @param end  becomes that behind the line feed, or of the NULs, or of the file
/// @return false if no end is found within the longest line
bool TextLines::findEnd(std::size_t from, std::size_t& end) {
    for (;;) {
        const char* const first = buffer_.data() + begin_ + from;
        const std::size_t count = end_ - begin_ - from;
        const auto* const feed = static_cast<const char*>(std::memchr(first, '\n', count));
        const std::size_t size = feed == nullptr ? count : static_cast<std::size_t>(feed - first);
        const auto* const nul = static_cast<const char*>(std::memchr(first, '\0', size));
        if (nul != nullptr) {
            const std::size_t at = from + static_cast<std::size_t>(nul - first);
            if (isNulRun(at)) {
                end = at;
                return true;
            }
            from = at + 1;
            continue;
        }
        if (feed != nullptr) {
            end = from + size + 1;
            return true;
        }
        from = end_ - begin_;
        if (from > maxLine_) return false;
        if (!fill()) {
            end = from;
            return true;
        }
    }
}

void TextLines::take(TextLine& line, std::size_t size) {
    line.text = {buffer_.data() + begin_, size};
    line.size = static_cast<std::int64_t>(size);
    begin_ += size;
}

bool TextLines::next(TextLine& line) {
    if (begin_ == end_ && !fill()) return false;
    line.offset = getPosition();
    line.isBehindNuls = isBehindNuls_;
    line.text = {};
    isBehindNuls_ = false;
    if (buffer_[begin_] == '\0' && isNulRun(0)) {
        skipNuls(line);
        return true;
    }
    std::size_t end = 0;
    if (!findEnd(0, end)) {
        skipEndless(line);
        return true;
    }
    line.kind = TextLine::Kind::kLine;
    take(line, end);
    return true;
}

char TextLines::peek(TextLine& line) {
    if (begin_ != end_) return buffer_[begin_];
    const std::size_t size = line.text.size();
    begin_ -= size;
    const bool isMore = fill();
    begin_ += size;
    line.text = {buffer_.data() + begin_ - size, size};
    return isMore ? buffer_[begin_] : '\0';
}

bool TextLines::extend(TextLine& line) {
    const std::size_t size = line.text.size();
    peek(line);
    begin_ -= size;
    std::size_t end = size;
    const bool isFound = size <= maxLine_ && findEnd(size, end) && end > size;
    take(line, isFound ? end : size);
    return isFound;
}

void TextLines::skipNuls(TextLine& line) {
    line.kind = TextLine::Kind::kNuls;
    do {
        const char* const first = buffer_.data() + begin_;
        const char* const last = buffer_.data() + end_;
        const char* const end = std::find_if(first, last, [](char c) { return c != '\0'; });
        begin_ += static_cast<std::size_t>(end - first);
    } while (begin_ == end_ && fill());
    line.size = getPosition() - line.offset;
    isBehindNuls_ = true;
}

void TextLines::skipEndless(TextLine& line) {
    line.kind = TextLine::Kind::kEndless;
    do {
        const char* const first = buffer_.data() + begin_;
        const auto* const feed = static_cast<const char*>(std::memchr(first, '\n', end_ - begin_));
        begin_ = feed == nullptr ? end_ : begin_ + static_cast<std::size_t>(feed - first) + 1;
        if (feed != nullptr) break;
    } while (fill());
    line.size = getPosition() - line.offset;
}

}  // namespace SensorFileTool
