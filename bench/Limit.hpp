#pragma once

#include "bench/SystemFile.hpp"
#include "bench/Workload.hpp"

#include <cstddef>
#include <string>
#include <vector>

/// What the machine allows: loops written by hand for this one layout and large blocks handed to
/// the system. A library that learns its columns at run time can only come near.
namespace Bench {

/// Whole pages, and large enough that a system call's own time does not count.
inline constexpr std::size_t kBlockBytes = std::size_t{256} * 1024;

/// Collects bytes and hands them to the system in whole blocks.
class BlockWriter {
 public:
    /// @param longest the most bytes between a reserve() and its commit()
    BlockWriter(const std::string& path, std::size_t longest);
    ~BlockWriter();
    BlockWriter(const BlockWriter&) = delete;
    BlockWriter& operator=(const BlockWriter&) = delete;

    /// Where the next bytes go.
    char* reserve() { return block_.data() + used_; }
    /// That many bytes have been put there.
    void commit(std::size_t count) {
        used_ += count;
        if (used_ >= kBlockBytes) writeBlock();
    }

 private:
    void writeBlock();

    SystemFile file_;
    std::vector<char> block_;
    std::size_t used_ = 0;
};

void limitWriteRows(const std::string& path);
/// Reads all rows; returns how many. `row` holds each in turn and the last at the end.
std::size_t limitReadRows(const std::string& path, BinaryRow& row);

/// Ready lines, collected into blocks.
void limitWriteLines(const std::string& path);
/// Ready lines, one write(2) each.
void limitWriteLinesFlushed(const std::string& path);

}  // namespace Bench
