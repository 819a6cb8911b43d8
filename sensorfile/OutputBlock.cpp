#include "sensorfile/OutputBlock.hpp"

#include "sensorfile/BlockSize.hpp"

#include <algorithm>
#include <cstring>

#include <Poco/Exception.h>
#include <Poco/File.h>

namespace SensorFile {
namespace {

/// The file is written in blocks that start and end on multiples of their size: the system then
/// keeps them in large pieces and touches none of them twice. Rows wait behind a full block until
/// it goes.
constexpr std::size_t kMaxRoomBehindBlock = std::size_t{16} * 1024;

}  // namespace

void OutputBlock::open(const std::string& path) {
    file_.open(path, std::ios::out | std::ios::trunc);
    path_ = path;
    blockSize_ = BlockSize::current();
    storage_.resize(blockSize_ + std::min(blockSize_, kMaxRoomBehindBlock));
    setp(storage_.data(), storage_.data() + storage_.size());
    fileSize_ = 0;
    rowEnd_ = 0;
    startRows(0);
}

void OutputBlock::close() {
    struct Closer {
        OutputBlock& block;
        ~Closer() {
            block.setp(nullptr, nullptr);
            block.storage_ = {};
            block.file_.close();
        }
    };
    const Closer closer{*this};
    try {
        handOver(static_cast<std::size_t>(pptr() - pbase()));
    } catch (const Poco::Exception&) {
        cutBack();
        throw;
    }
}

void OutputBlock::startRows(std::size_t rowSize) {
    markRow();
    rowSize_ = rowSize;
    rowsStart_ = fileSize_ + rowEnd_;
    lineEnd_ = fileSize_;
}

void OutputBlock::flushRows() {
    handOver(rowEnd_);
}

OutputBlock::int_type OutputBlock::overflow(int_type c) {
    if (traits_type::eq_int_type(c, traits_type::eof())) return traits_type::not_eof(c);
    *reserve(1) = traits_type::to_char_type(c);
    pbump(1);
    return c;
}

void OutputBlock::makeRoom(std::size_t size) {
    if (storage_.empty()) throw Poco::InvalidAccessException("The file is not open.");
    handOver(alignedRows());
    const auto used = static_cast<std::size_t>(pptr() - pbase());
    if (storage_.size() - used >= size) return;
    // A single row is larger than the block.
    storage_.resize(std::max(storage_.size() * 2, used + size));
    setp(storage_.data(), storage_.data() + storage_.size());
    pbump(static_cast<int>(used));
}

/// Bytes of whole rows that end on a block of the file; all of them when there is no such block.
std::size_t OutputBlock::alignedRows() const {
    const auto beyondBlock = static_cast<std::size_t>((fileSize_ + rowEnd_) % blockSize_);
    return rowEnd_ > beyondBlock ? rowEnd_ - beyondBlock : rowEnd_;
}

void OutputBlock::handOver(std::size_t size) {
    std::size_t taken = 0;
    try {
        while (taken < size)
            taken += file_.writeSome(pbase() + taken, size - taken);
    } catch (...) {
        discard(taken);
        throw;
    }
    discard(taken);
}

void OutputBlock::discard(std::size_t size) {
    for (std::size_t end = size; end > 0; --end) {
        if (rowSize_ != 0) break;
        if (pbase()[end - 1] == '\n') {
            lineEnd_ = fileSize_ + end;
            break;
        }
    }
    const auto left = static_cast<std::size_t>(pptr() - pbase()) - size;
    if (left > 0 && size > 0) std::memmove(pbase(), pbase() + size, left);
    fileSize_ += size;
    rowEnd_ -= std::min(rowEnd_, size);
    commit(pbase() + left);
}

std::uint64_t OutputBlock::lastRowEnd() const {
    if (fileSize_ <= rowsStart_) return fileSize_;
    if (rowSize_ == 0) return lineEnd_;
    return fileSize_ - (fileSize_ - rowsStart_) % rowSize_;
}

void OutputBlock::cutBack() {
    try {
        Poco::File file(path_);
        if (lastRowEnd() < fileSize_ && file.isFile()) file.setSize(lastRowEnd());
    } catch (const Poco::Exception&) {
        // The error that led here is the one to tell.
        return;
    }
}

}  // namespace SensorFile
