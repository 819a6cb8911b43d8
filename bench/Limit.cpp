#include "bench/Limit.hpp"

#include <cstdint>
#include <cstring>

#include <benchmark/benchmark.h>

namespace Bench {
namespace {

void packRow(char* out, const BinaryRow& row) {
    const auto put = [](char* place, double value) {
        const auto bits = static_cast<std::uint16_t>(static_cast<std::int32_t>(value));
        place[0] = static_cast<char>(bits >> 8);
        place[1] = static_cast<char>(bits);
    };
    for (std::size_t column = 0; column + 1 < kBinaryColumns; ++column) {
        put(out + 2 * column, row[column]);
    }
    out[kBinaryRowBytes - 1] = static_cast<char>(static_cast<std::int32_t>(row.back()));
}

void unpackRow(const unsigned char* in, BinaryRow& row) {
    const auto get = [](const unsigned char* place) {
        return static_cast<std::uint16_t>(place[0] << 8 | place[1]);
    };
    row.front() = get(in);
    for (std::size_t column = 1; column + 1 < kBinaryColumns; ++column) {
        row[column] = static_cast<std::int16_t>(get(in + 2 * column));
    }
    row.back() = in[kBinaryRowBytes - 1];
}

}  // namespace

BlockWriter::BlockWriter(const std::string& path, std::size_t longest)
    : file_{path, SystemFile::Mode::kCreate}, block_(kBlockBytes + longest) {}

BlockWriter::~BlockWriter() {
    file_.write(block_.data(), used_);
}

void BlockWriter::writeBlock() {
    file_.write(block_.data(), kBlockBytes);
    used_ -= kBlockBytes;
    std::memcpy(block_.data(), block_.data() + kBlockBytes, used_);
}

void limitWriteRows(const std::string& path) {
    BlockWriter out{path, kBinaryRowBytes};
    const auto& rows = binaryRows();
    for (std::size_t i = 0; i < kBinaryRows; ++i) {
        packRow(out.reserve(), rows[i % kCycle]);
        out.commit(kBinaryRowBytes);
    }
}

std::size_t limitReadRows(const std::string& path, BinaryRow& row) {
    SystemFile file{path, SystemFile::Mode::kRead};
    std::vector<unsigned char> block(kBlockBytes + kBinaryRowBytes);
    std::size_t rows = 0;
    std::size_t left = 0;
    while (const std::size_t taken = file.read(block.data() + left, kBlockBytes)) {
        const unsigned char* next = block.data();
        const unsigned char* const end = next + left + taken;
        for (; end - next >= static_cast<std::ptrdiff_t>(kBinaryRowBytes); ++rows) {
            unpackRow(next, row);
            next += kBinaryRowBytes;
            benchmark::DoNotOptimize(row);
            benchmark::ClobberMemory();
        }
        left = static_cast<std::size_t>(end - next);
        std::memcpy(block.data(), next, left);
    }
    return rows;
}

void limitWriteLines(const std::string& path) {
    const auto& lines = textLines();
    BlockWriter out{path, 1024};
    for (std::size_t i = 0; i < kTextRows; ++i) {
        const std::string& line = lines[i % kCycle];
        std::memcpy(out.reserve(), line.data(), line.size());
        out.commit(line.size());
    }
}

void limitWriteLinesFlushed(const std::string& path) {
    const auto& lines = textLines();
    SystemFile file{path, SystemFile::Mode::kCreate};
    for (std::size_t i = 0; i < kTextRows; ++i) {
        const std::string& line = lines[i % kCycle];
        file.write(line.data(), line.size());
    }
}

}  // namespace Bench
