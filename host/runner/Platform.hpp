#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>

namespace Quoril::Runner {

/// What the program asks of the operating system; the one place with system calls.

/// The folder of the program's file, with a separator at its end; empty if it is not known.
[[nodiscard]] std::string getProgramFolder();

/// Why a file of that path could not be made or written to: "it is a folder", "the folder ... does
/// not exist" and the like; empty if nothing is known to be in the way. Touches nothing.
[[nodiscard]] std::string findWriteObstacle(const std::string& path);

/// What the system says when the file is opened to be written to, e.g. "Permission denied"; empty
/// if it can be. Changes no file, and leaves none that was not there.
[[nodiscard]] std::string findWriteError(const std::string& path);

/// What the system says when a regular file of that path, there already or not, cannot get so many
/// bytes: "No space left on device, 0 bytes are free"; empty if it can, or nobody knows.
[[nodiscard]] std::string findFullDisk(const std::string& path, std::uint64_t bytes);

/// What became of a file that is being written.
struct FileFacts {
    std::uint64_t size = 0;                  ///< bytes
    std::uint64_t fileSystem = 0;            ///< the same number for files of one file system
    std::optional<std::uint64_t> freeBytes;  ///< for this process; nothing if nobody knows
    bool isRemoved = false;                  ///< it has no name any more
    bool isInPlace = true;                   ///< its path still leads to it
};

/// Keeps an eye on a regular file that someone else writes, wherever it is moved to.
class WatchedFile {
 public:
    /// A path that leads to no regular file, or to one that cannot be opened, is not watched.
    explicit WatchedFile(const std::string& path);
    ~WatchedFile();
    WatchedFile(const WatchedFile&) = delete;
    WatchedFile& operator=(const WatchedFile&) = delete;

    /// Nothing if the file is not watched or cannot be looked at.
    [[nodiscard]] std::optional<FileFacts> look() const;

 private:
    struct Impl;
    std::unique_ptr<Impl> impl_;
};

/// Why nothing can be read from a file: "does not exist", "is a folder", "is empty" or "cannot be
/// read: " with what the system says; empty if nothing is known to be in the way.
[[nodiscard]] std::string findReadObstacle(const std::string& path);

/// A limit of the size of files (`ulimit -f`), and a reader of the standard output or of a pipe who
/// goes away, are errors of the file from now on, not the end of the program, whose other
/// recordings go on.
void takeSignalsOfFilesAsErrors();

/// True if the standard error stream goes to a terminal.
[[nodiscard]] bool isErrorStreamTerminal();

/// While it lives, the first request to end the program (Ctrl-C, or a polite kill) runs the
/// callback on a thread of its own; the second one ends the process at once with exit code 130.
/// Make it before other threads; one at a time.
class InterruptWatch {
 public:
    explicit InterruptWatch(std::function<void()> onFirst);
    /// Gives the requests back to the system.
    ~InterruptWatch();
    InterruptWatch(const InterruptWatch&) = delete;
    InterruptWatch& operator=(const InterruptWatch&) = delete;

 private:
    struct Impl;
    std::unique_ptr<Impl> impl_;
};

}  // namespace Quoril::Runner
