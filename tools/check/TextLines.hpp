#pragma once

#include "sensorfile/BlockFileStream.hpp"

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace SensorFileTool {

/// A piece of a text file.
struct TextLine {
    enum class Kind {
        kLine,     ///< a line, or its beginning up to NUL bytes or the end of the file
        kNuls,     ///< two NUL bytes or more, or one at the end of the file
        kEndless,  ///< a line longer than any row
    };

    Kind kind = Kind::kLine;
    std::int64_t offset = 0;  ///< from the start of the file
    std::int64_t size = 0;    ///< bytes, with the line feed
    std::string_view text;    ///< of a line, with its line feed; until the next call
    bool isBehindNuls = false;

    [[nodiscard]] bool hasEnd() const { return !text.empty() && text.back() == '\n'; }
};

/// Cuts a text file into lines, in bounded memory whatever is in it.
class TextLines {
 public:
    /// @param start  offset of the first line
    /// @param maxLine  bytes of the longest line that is taken as one
    /// @throws Poco::FileException (or one derived) naming the path; as the other functions
    TextLines(const std::string& path, std::int64_t start, std::size_t maxLine);

    /// @return false at the end of the file
    bool next(TextLine& line);
    /// The byte behind a line that was just given; NUL if there is none.
    char peek(TextLine& line);
    /// Takes the following line as a part of this one, whose line feed was no line's end.
    /// @return false if nothing follows
    bool extend(TextLine& line);

    /// Of what was given last.
    [[nodiscard]] std::int64_t getPosition() const {
        return bufferOffset_ + static_cast<std::int64_t>(begin_);
    }

 private:
    bool fill();
    void take(TextLine& line, std::size_t size);
    bool findEnd(std::size_t from, std::size_t& end);
    void skipNuls(TextLine& line);
    void skipEndless(TextLine& line);
    [[nodiscard]] bool isNulRun(std::size_t at);

    SensorFile::BlockInputStream file_;
    std::size_t maxLine_;
    std::vector<char> buffer_;
    std::size_t begin_ = 0;          ///< of what was not given yet
    std::size_t end_ = 0;            ///< of what was read
    std::int64_t bufferOffset_ = 0;  ///< of the buffer's first byte in the file
    bool isBehindNuls_ = false;
};

}  // namespace SensorFileTool
