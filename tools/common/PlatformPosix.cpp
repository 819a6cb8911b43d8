#include "tools/common/Platform.hpp"

#include <algorithm>
#include <array>
#include <atomic>
#include <cerrno>
#include <csignal>
#include <cstddef>
#include <fcntl.h>
#include <unistd.h>

#include <climits>

namespace SensorFileTool::Platform {

namespace {

constexpr std::array kSignals = {SIGINT, SIGTERM, SIGHUP};
// A command writes few files at a time.
constexpr std::size_t kMaxFiles = 16;

/// A signal handler reaches nothing but statics, and allocates nothing.
struct TemporaryFile {
    std::atomic<bool> isUsed{false};
    std::array<char, PATH_MAX> path{};
};
std::array<TemporaryFile, kMaxFiles> temporaryFiles;

extern "C" void onInterrupt(int signal) {
    for (const TemporaryFile& file : temporaryFiles)
        if (file.isUsed) ::unlink(file.path.data());
    static_cast<void>(std::signal(signal, SIG_DFL));
    static_cast<void>(std::raise(signal));
}

void handleInterrupts() {
    static const bool isDone = [] {
        for (const int signal : kSignals) {
            struct sigaction action {};
            ::sigaction(signal, nullptr, &action);
            if (action.sa_handler == SIG_IGN) continue;  // nohup
            action.sa_handler = onInterrupt;
            ::sigaction(signal, &action, nullptr);
        }
        return true;
    }();
    static_cast<void>(isDone);
}

}  // namespace

bool isOutputTerminal() {
    return ::isatty(STDOUT_FILENO) != 0;
}

bool isErrorTerminal() {
    return ::isatty(STDERR_FILENO) != 0;
}

void prepareStandardStreams() {
    static_cast<void>(std::signal(SIGPIPE, SIG_IGN));
    static_cast<void>(std::signal(SIGXFSZ, SIG_IGN));
}

std::error_code createFile(const std::string& path, bool isPrivate) {
    constexpr mode_t kOwnerOnly = 0600;
    constexpr mode_t kAsUsual = 0666;
    const int file = ::open(path.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC,
                            isPrivate ? kOwnerOnly : kAsUsual);
    if (file < 0) return {errno, std::generic_category()};
    ::close(file);
    return {};
}

void removeOnInterrupt(const std::string& path) {
    handleInterrupts();
    if (path.size() >= PATH_MAX) return;
    for (TemporaryFile& file : temporaryFiles) {
        if (file.isUsed) continue;
        *std::copy(path.begin(), path.end(), file.path.begin()) = '\0';
        file.isUsed = true;
        return;
    }
}

void keepOnInterrupt(const std::string& path) {
    for (TemporaryFile& file : temporaryFiles)
        if (file.isUsed && path == file.path.data()) file.isUsed = false;
}

}  // namespace SensorFileTool::Platform
