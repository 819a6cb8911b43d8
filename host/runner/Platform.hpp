#pragma once

#include <functional>
#include <memory>
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

/// Why nothing can be read from a file: "does not exist", "is a folder", "is empty" or "cannot be
/// read: " with what the system says; empty if nothing is known to be in the way.
[[nodiscard]] std::string findReadObstacle(const std::string& path);

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
