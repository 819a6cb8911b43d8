#include "host/runner/Platform.hpp"

#include <array>
#include <atomic>
#include <cerrno>
#include <csignal>
#include <fcntl.h>
#include <filesystem>
#include <sys/stat.h>
#include <sys/statvfs.h>
#include <system_error>
#include <thread>
#include <unistd.h>

#include <Poco/Exception.h>

namespace Quoril::Runner {

namespace {
namespace fs = std::filesystem;

constexpr int kInterruptedExitCode = 130;
constexpr std::array kSignals = {SIGINT, SIGTERM, SIGHUP};
constexpr char kInterrupted = 'i';
constexpr char kQuit = 'q';

// A signal handler reaches nothing but statics.
std::atomic<int> interruptCount{0};
std::atomic<int> interruptPipe{-1};

std::string describeError(int error) {
    return std::generic_category().message(error);
}

/// What this process may still fill; nothing from a file system that does not count.
std::optional<std::uint64_t> countFreeBytes(const struct statvfs& disk) {
    if (disk.f_blocks == 0) return std::nullopt;
    // What is kept back is kept for the superuser.
    const auto blocks = ::geteuid() == 0 ? disk.f_bfree : disk.f_bavail;
    return static_cast<std::uint64_t>(blocks) * disk.f_frsize;
}

/// Where a file would be made through symbolic links that lead to nothing.
fs::path followLinks(fs::path path) {
    constexpr int kMostLinks = 40;  // as many as the system follows
    std::error_code error;
    for (int i = 0; i < kMostLinks && fs::is_symlink(fs::symlink_status(path, error)); ++i)
        path = path.parent_path() / fs::read_symlink(path, error);
    return path;
}

void writeByte(int file, char byte) {
    while (::write(file, &byte, 1) < 0 && errno == EINTR) {
    }
}

extern "C" void onInterrupt(int /*signal*/) {
    if (interruptCount.fetch_add(1) > 0) ::_exit(kInterruptedExitCode);
    const int errorOfInterrupted = errno;
    writeByte(interruptPipe.load(), kInterrupted);
    errno = errorOfInterrupted;
}
}  // namespace

std::string getProgramFolder() {
    std::error_code error;
    const std::filesystem::path program = std::filesystem::read_symlink("/proc/self/exe", error);
    return error ? std::string() : program.parent_path().string() + "/";
}

std::string findWriteObstacle(const std::string& path) {
    std::error_code error;
    if (fs::is_directory(path, error)) return "it is a folder";
    if (fs::exists(path, error)) {
        const bool isWritable = ::access(path.c_str(), W_OK) == 0;
        return isWritable ? "" : "the file cannot be written to: " + describeError(errno);
    }
    // The name itself may be what the system does not take: too long, or a circle of links.
    const int cause = ::access(path.c_str(), F_OK) == 0 ? 0 : errno;
    if (cause == ENAMETOOLONG || cause == ELOOP) return describeError(cause);
    const std::string folder = fs::absolute(followLinks(path), error).parent_path().string();
    if (!fs::exists(folder, error)) return "the folder '" + folder + "' does not exist";
    if (!fs::is_directory(folder, error)) return "'" + folder + "' is no folder";
    if (::access(folder.c_str(), W_OK | X_OK) != 0)
        return "the folder '" + folder + "' cannot be written to: " + describeError(errno);
    return "";
}

std::string findWriteError(const std::string& path) {
    // A pipe without reader must not make it wait.
    int file = ::open(path.c_str(), O_WRONLY | O_NONBLOCK | O_CLOEXEC);
    const bool isMissing = file < 0 && errno == ENOENT;
    std::error_code error;
    // Through a link to nothing the system makes no file that must be a new one.
    // cppcheck-suppress resourceLeak ; nothing is open yet
    if (isMissing && fs::is_symlink(fs::symlink_status(path, error))) return describeError(ENOENT);
    if (isMissing) {
        constexpr mode_t kOwnerOnly = 0600;
        // cppcheck-suppress resourceLeak ; nothing is open yet
        file = ::open(path.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, kOwnerOnly);
    }
    if (file < 0) return describeError(errno);
    ::close(file);
    if (isMissing) ::unlink(path.c_str());
    return "";
}

std::string findReadObstacle(const std::string& path) {
    std::error_code error;
    const fs::file_status status = fs::status(path, error);
    if (status.type() == fs::file_type::not_found) return "does not exist";
    if (error) return "cannot be read: " + error.message();
    if (fs::is_directory(status)) return "is a folder";
    if (::access(path.c_str(), R_OK) != 0) return "cannot be read: " + describeError(errno);
    const bool isEmpty = fs::is_regular_file(status) && fs::file_size(path, error) == 0;
    return isEmpty ? "is empty" : "";
}

std::string findFullDisk(const std::string& path, std::uint64_t bytes) {
    struct stat file {};
    const bool exists = ::stat(path.c_str(), &file) == 0;
    if (exists && !S_ISREG(file.st_mode)) return "";
    std::error_code error;
    const std::string folder = std::filesystem::absolute(path, error).parent_path().string();
    struct statvfs disk {};
    if (::statvfs(exists ? path.c_str() : folder.c_str(), &disk) != 0) return "";
    const std::optional<std::uint64_t> room = countFreeBytes(disk);
    if (!room || *room >= bytes) return "";
    return describeError(ENOSPC) + ", " + std::to_string(*room) + " bytes are free";
}

struct WatchedFile::Impl {
    std::string path;
    int file = -1;
};

WatchedFile::WatchedFile(const std::string& path) : impl_(std::make_unique<Impl>()) {
    impl_->path = path;
    // Opening anything else may wait or do something: a pipe would take it for its reader.
    std::error_code error;
    if (!std::filesystem::is_regular_file(path, error)) return;
    impl_->file = ::open(path.c_str(), O_RDONLY | O_NONBLOCK | O_CLOEXEC);
}

WatchedFile::~WatchedFile() {
    if (impl_->file >= 0) ::close(impl_->file);
}

std::optional<FileFacts> WatchedFile::look() const {
    struct stat file {};
    struct statvfs disk {};
    if (impl_->file < 0 || ::fstat(impl_->file, &file) != 0) return std::nullopt;
    FileFacts facts;
    facts.size = static_cast<std::uint64_t>(file.st_size);
    facts.fileSystem = static_cast<std::uint64_t>(file.st_dev);
    if (::fstatvfs(impl_->file, &disk) == 0) facts.freeBytes = countFreeBytes(disk);
    facts.isRemoved = file.st_nlink == 0;
    struct stat named {};
    facts.isInPlace = ::stat(impl_->path.c_str(), &named) == 0 && named.st_dev == file.st_dev &&
                      named.st_ino == file.st_ino;
    return facts;
}

void takeSignalsOfFilesAsErrors() {
    std::signal(SIGXFSZ, SIG_IGN);
    std::signal(SIGPIPE, SIG_IGN);
}

bool isErrorStreamTerminal() {
    return ::isatty(STDERR_FILENO) == 1;
}

struct InterruptWatch::Impl {
    std::function<void()> onFirst;
    std::array<int, 2> pipe{-1, -1};
    std::array<struct sigaction, kSignals.size()> before{};
    std::thread thread;

    void watch() {
        char byte = 0;
        for (;;) {
            const ssize_t count = ::read(pipe[0], &byte, 1);
            if (count < 0 && errno == EINTR) continue;
            if (count != 1 || byte == kQuit) return;
            onFirst();
        }
    }
};

InterruptWatch::InterruptWatch(std::function<void()> onFirst) : impl_(std::make_unique<Impl>()) {
    impl_->onFirst = std::move(onFirst);
    if (::pipe(impl_->pipe.data()) != 0)
        throw Poco::SystemException("A pipe cannot be made", describeError(errno));
    interruptCount = 0;
    interruptPipe = impl_->pipe[1];
    impl_->thread = std::thread([impl = impl_.get()] { impl->watch(); });
    struct sigaction action {};
    action.sa_handler = onInterrupt;
    action.sa_flags = SA_RESTART;
    ::sigemptyset(&action.sa_mask);
    for (std::size_t i = 0; i < kSignals.size(); ++i)
        ::sigaction(kSignals[i], &action, &impl_->before[i]);
}

InterruptWatch::~InterruptWatch() {
    for (std::size_t i = 0; i < kSignals.size(); ++i)
        ::sigaction(kSignals[i], &impl_->before[i], nullptr);
    writeByte(impl_->pipe[1], kQuit);
    impl_->thread.join();
    interruptPipe = -1;
    ::close(impl_->pipe[0]);
    ::close(impl_->pipe[1]);
}

}  // namespace Quoril::Runner
