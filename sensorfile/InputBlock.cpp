#include "sensorfile/InputBlock.hpp"

#include "sensorfile/BlockSize.hpp"

#include <algorithm>
#include <array>

#include <Poco/Exception.h>

namespace SensorFile {
namespace {

/// In front of a block, at most, for what extend() keeps.
constexpr std::size_t kMaxRoomBeforeBlock = 4096;

}  // namespace

void InputBlock::open(const std::string& path) {
    file_.open(path, std::ios::in);
    path_ = path;
    blockSize_ = BlockSize::current();
    roomBeforeBlock_ = std::min(blockSize_, kMaxRoomBeforeBlock);
    storage_ = std::make_unique_for_overwrite<char[]>(roomBeforeBlock_ + blockSize_);
    setg(nullptr, nullptr, nullptr);
    blockEnd_ = 0;
}

void InputBlock::close() {
    setg(nullptr, nullptr, nullptr);
    storage_.reset();
    blockEnd_ = 0;
    file_.close();
}

void InputBlock::seek(std::int64_t position) {
    const std::int64_t blockStart = blockEnd_ - (egptr() - eback());
    if (position >= blockStart && position <= blockEnd_) {
        setg(eback(), eback() + (position - blockStart), egptr());
        return;
    }
    if (file_.rdbuf()->pubseekpos(position, std::ios::in) != std::streampos(position)) {
        throw Poco::ReadFileException("cannot go back", path_);
    }
    setg(nullptr, nullptr, nullptr);
    blockEnd_ = position;
}

InputBlock::int_type InputBlock::underflow() {
    if (storage_ == nullptr) return traits_type::eof();
    const std::size_t count = readBlock();
    if (count == 0) return traits_type::eof();
    char* const block = storage_.get() + roomBeforeBlock_;
    setg(block, block, block + count);
    return traits_type::to_int_type(*block);
}

bool InputBlock::extend() {
    const auto left = static_cast<std::size_t>(egptr() - gptr());
    if (left > roomBeforeBlock_) return false;
    // Kept aside until it is known that there is more: at the end nothing may change.
    std::array<char, kMaxRoomBeforeBlock> kept;
    std::copy_n(gptr(), left, kept.begin());
    const std::size_t count = readBlock();
    if (count == 0) return false;
    char* const block = storage_.get() + roomBeforeBlock_;
    std::copy_n(kept.begin(), left, block - left);
    setg(block - left, block - left, block + count);
    return true;
}

/// Reads into the storage's block; the number of bytes, 0 at the end of the file, which leaves
/// the storage alone.
std::size_t InputBlock::readBlock() {
    // Blocks end where a block would end that was read from the file's start.
    const auto beyondBlock =
        static_cast<std::size_t>(blockEnd_ % static_cast<std::int64_t>(blockSize_));
    const std::size_t count =
        file_.readSome(storage_.get() + roomBeforeBlock_, blockSize_ - beyondBlock);
    blockEnd_ += static_cast<std::int64_t>(count);
    return count;
}

}  // namespace SensorFile
