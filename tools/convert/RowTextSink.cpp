#include "tools/convert/RowTextSink.hpp"

#include "tools/recording/ColumnChoice.hpp"

namespace SensorFileTool {

RowTextSink::RowTextSink(const std::string& path, RowFormat format,
                         const SensorFile::SensorFileConfig& config)
    : file_(path), format_(format, config, chooseColumns(config, "")) {
    format_.appendHeader(text_);
}

void RowTextSink::write(const Row& row) {
    constexpr std::size_t kPieceSize = std::size_t{64} * 1024;
    format_.appendRow(text_, row);
    if (text_.size() < kPieceSize) return;
    file_.append(text_);
    text_.clear();
}

void RowTextSink::finish() {
    file_.append(text_);
    file_.close();
}

}  // namespace SensorFileTool
