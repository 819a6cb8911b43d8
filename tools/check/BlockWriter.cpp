#include "tools/check/BlockWriter.hpp"

namespace SensorFileTool {

namespace {

constexpr std::size_t kBlock = std::size_t{256} * 1024;

}  // namespace

BlockWriter::BlockWriter(const std::string& path) {
    file_.open(path, std::ios::out | std::ios::trunc);
    block_.reserve(2 * kBlock);
}

void BlockWriter::write(std::string_view bytes) {
    block_ += bytes;
    if (block_.size() >= kBlock) flush();
}

void BlockWriter::close() {
    flush();
    file_.close();
}

void BlockWriter::flush() {
    for (std::size_t done = 0; done < block_.size();)
        done += file_.writeSome(block_.data() + done, block_.size() - done);
    block_.clear();
}

}  // namespace SensorFileTool
