#include "tests/stress/Platform.hpp"

#include <array>
#include <atomic>
#include <chrono>
#include <csignal>
#include <cstdio>
#include <execinfo.h>
#include <filesystem>
#include <fstream>
#include <malloc.h>
#include <pthread.h>
#include <sys/syscall.h>
#include <thread>
#include <unistd.h>

#if defined(__SANITIZE_THREAD__) || defined(__SANITIZE_ADDRESS__)
// The sanitizers bring an allocator of their own; not every compiler installs its header.
extern "C" std::size_t __sanitizer_get_current_allocated_bytes();
#define STRESS_HAS_SANITIZER_ALLOCATOR 1
#endif

namespace Stress {

namespace {

constexpr int kDumpSignal = SIGUSR1;
constexpr int kMostFrames = 60;
constexpr auto kPatience = std::chrono::seconds(1);

std::atomic<int> writtenCount{0};

/// Runs on the thread whose stack is wanted, wherever it waits. Only what is safe in a handler.
void writeOwnStack(int /*signal*/) {
    std::array<void*, kMostFrames> frames;
    const int count = backtrace(frames.data(), kMostFrames);
    backtrace_symbols_fd(frames.data(), count, STDERR_FILENO);
    ++writtenCount;
}

std::string nameOf(const std::filesystem::path& task) {
    std::ifstream stream(task / "comm");
    std::string name;
    std::getline(stream, name);
    return name;
}

void writeStackOf(const std::filesystem::path& task) {
    const std::string id = task.filename().string();
    std::fprintf(stderr, "\n== stack of thread %s '%s'\n", id.c_str(), nameOf(task).c_str());
    std::fflush(stderr);
    const int before = writtenCount;
    if (syscall(SYS_tgkill, getpid(), std::stoi(id), kDumpSignal) != 0) return;
    const auto limit = std::chrono::steady_clock::now() + kPatience;
    while (writtenCount == before) {
        if (std::chrono::steady_clock::now() > limit) {
            std::fprintf(stderr, "(no answer)\n");
            return;
        }
        std::this_thread::sleep_for(std::chrono::milliseconds(1));
    }
}

}  // namespace

void silenceStandardOutput() {
    if (std::freopen(nullFile(), "w", stdout) == nullptr) std::perror("standard output");
}

void prepareStackDump() {
    // The first call may allocate, which a handler must not.
    std::array<void*, 1> frame;
    backtrace(frame.data(), 1);
    struct sigaction action = {};
    action.sa_handler = writeOwnStack;
    action.sa_flags = SA_RESTART;
    sigaction(kDumpSignal, &action, nullptr);
}

void writeAllStacks() {
    for (const auto& task : std::filesystem::directory_iterator("/proc/self/task"))
        writeStackOf(task.path());
}

void nameThisThread(const std::string& name) {
    pthread_setname_np(pthread_self(), name.substr(0, 15).c_str());
}

std::size_t countHeapBytes() {
#if defined(STRESS_HAS_SANITIZER_ALLOCATOR)
    return __sanitizer_get_current_allocated_bytes();
#else
    const struct mallinfo2 info = mallinfo2();
    return info.uordblks + info.hblkhd;
#endif
}

std::size_t countResidentBytes() {
    std::ifstream stream("/proc/self/statm");
    std::size_t total = 0;
    std::size_t resident = 0;
    stream >> total >> resident;
    return resident * static_cast<std::size_t>(sysconf(_SC_PAGESIZE));
}

const char* nullFile() {
    return "/dev/null";
}

}  // namespace Stress
