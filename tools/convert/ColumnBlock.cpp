#include "tools/convert/ColumnBlock.hpp"

#include "tools/convert/LittleEndianValue.hpp"

#include <algorithm>

namespace SensorFileTool {

namespace {

constexpr std::size_t kMaxRows = 16384;
constexpr std::size_t kMaxBytes = std::size_t{4} * 1024 * 1024;

}  // namespace

ColumnBlock::ColumnBlock(const SensorFile::SensorFileConfig& config) {
    std::size_t rowSize = 0;
    for (std::size_t i = 0; i < config.getColumnCount(); ++i) {
        sizes_.push_back(config.getColumn(i).getSize());
        rowSize += sizes_.back();
    }
    const std::size_t fitting = kMaxBytes / std::max<std::size_t>(rowSize, 1);
    capacity_ = std::clamp<std::size_t>(fitting, 1, kMaxRows);
    for (const std::size_t size : sizes_)
        bytes_.emplace_back(size * capacity_);
}

void ColumnBlock::add(const Row& row) {
    for (std::size_t i = 0; i < sizes_.size(); ++i)
        putLittleEndian(bytes_[i].data() + rowCount_ * sizes_[i], row, i);
    ++rowCount_;
}

std::string_view ColumnBlock::getBytes(std::size_t column) const {
    return {bytes_[column].data(), rowCount_ * sizes_[column]};
}

}  // namespace SensorFileTool
