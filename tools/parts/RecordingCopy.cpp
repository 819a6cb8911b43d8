#include "tools/parts/RecordingCopy.hpp"

#include "tools/parts/RowBytes.hpp"
#include "tools/recording/RecordingInfo.hpp"
#include "tools/recording/RowReader.hpp"

#include <algorithm>
#include <fstream>
#include <string_view>
#include <vector>

#include <Poco/Exception.h>

namespace SensorFileTool {

namespace {

constexpr std::size_t kBlockSize = std::size_t{256} * 1024;

// Rows need not stand on lines of their own; longer lines than this are broken at a blank.
constexpr std::size_t kMaxLine = std::size_t{1024} * 1024;

bool isBlank(char letter) {
    return letter == ' ' || (letter >= '\t' && letter <= '\r');
}

/// The size of the whole lines at a text's beginning.
std::size_t sizeOfLines(std::string& text) {
    const std::size_t end = text.rfind('\n');
    if (end != std::string::npos) return end + 1;
    if (text.size() < kMaxLine) return 0;
    const std::size_t blank = text.find_last_of(" \t\r\v\f");
    if (blank == std::string::npos) return 0;
    text[blank] = '\n';
    return blank + 1;
}

/// Reads a part of a file, block by block.
class BlockSource {
 public:
    BlockSource(const std::string& path, const RowBytes& range)
        : file_(path, std::ios::binary), left_(range.end - range.begin), path_(path) {
        file_.seekg(range.begin);
    }

    /// @param multiple  blocks are of a multiple of this size, if it is not 0
    /// @return nothing at the end
    std::string_view next(std::size_t multiple) {
        const std::size_t size =
            multiple == 0 ? kBlockSize : std::max(multiple, kBlockSize / multiple * multiple);
        block_.resize(static_cast<std::size_t>(
            std::min<std::int64_t>(left_, static_cast<std::int64_t>(size))));
        if (block_.empty()) return {};
        file_.read(block_.data(), static_cast<std::streamsize>(block_.size()));
        if (!file_) throw Poco::ReadFileException(path_);
        left_ -= static_cast<std::int64_t>(block_.size());
        return {block_.data(), block_.size()};
    }

 private:
    std::ifstream file_;
    std::int64_t left_;
    std::string path_;
    std::vector<char> block_;
};

}  // namespace

RecordingCopy::RecordingCopy(const std::string& path, SensorFile::SensorFileConfig config,
                             bool binary)
    : isBinary_(binary) {
    // A section that was not there gets no date of its own.
    if (!config.hasCalibTime()) config.setCalibTime(config.getCreationTime());
    writer_.open(path, config, binary, /*writeHeaders=*/true);
    writer_.setTextRowsWaiting(true);
}

std::uint64_t RecordingCopy::append(Recording& source, const RowRange& range) {
    source.getReader().rewind();
    RowReader rows(source);
    const std::uint64_t first = skipToRow(range.first, source, rows);
    return first < range.first ? 0 : appendNext(source, range.last - first);
}

std::uint64_t RecordingCopy::appendNext(Recording& source, std::uint64_t count) {
    return isAsItStands(source) ? appendBytes(source, count) : appendRows(source, count);
}

bool RecordingCopy::isAsItStands(const Recording& source) const {
    return source.isBinary() == isBinary_ && (!isBinary_ || source.getConfig().isBigEndian());
}

/// Text ends behind the last value: blanks in front of the first belong to the row before.
std::uint64_t RecordingCopy::appendBytes(Recording& source, std::uint64_t count) {
    const RowBytes rows = passRows(source, count);
    BlockSource blocks(source.getPath(), rows);
    std::string line;  // text behind the last line end
    bool isAtStart = true;
    for (;;) {
        std::string_view block = blocks.next(isBinary_ ? source.getRowSize() : 0);
        if (block.empty()) break;
        if (isBinary_) {
            writer_.writeRowBytes(block);
            continue;
        }
        while (isAtStart && !block.empty() && isBlank(block.front()))
            block.remove_prefix(1);
        isAtStart = isAtStart && block.empty();
        line += block;
        const std::size_t end = sizeOfLines(line);
        writer_.writeRowBytes(std::string_view(line).substr(0, end));
        line.erase(0, end);
    }
    if (!line.empty()) writer_.writeRowBytes(line + "\t\n");
    return rows.rows;
}

std::uint64_t RecordingCopy::appendRows(Recording& source, std::uint64_t count) {
    RowReader rows(source);
    std::uint64_t row = 0;
    for (; row < count && rows.next(); ++row)
        writer_.writeRow(rows.row().values(), rows.row().bits());
    return row;
}

}  // namespace SensorFileTool
