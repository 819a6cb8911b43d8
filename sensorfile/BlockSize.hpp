#pragma once

#include <cstddef>

namespace SensorFile {

/// How many bytes readers and writers exchange with the system in one call: 256 KiB. Tests make it
/// small, so that rows and values lie across blocks in small files, too.
class BlockSize {
 public:
    BlockSize() = delete;

    /// What readers and writers take when they open. May be called from any thread.
    static std::size_t current();
    /// Puts another size in use; returns the one before.
    /// @param bytes at least 1
    static std::size_t replace(std::size_t bytes);
};

}  // namespace SensorFile
