// Loaded before a program (LD_PRELOAD), makes its writes to one file fail or be short, as told by
// environment variables:
//   FAILING_FILE   what the file's path ends with
//   FAILING_FROM   number of the first write that fails, from 1
//   FAILING_TO     number of the last one that fails; by default none succeeds again
//   SHORT_WRITES   no write takes more bytes than this
// The error is EIO, as of a disk that is broken or was pulled out.

#include <algorithm>
#include <array>
#include <atomic>
#include <cerrno>
#include <cstdlib>
#include <string>
#include <string_view>
#include <sys/syscall.h>
#include <unistd.h>

#include <climits>

namespace {

long settingOf(const char* name, long otherwise) {
    const char* text = std::getenv(name);
    return text == nullptr ? otherwise : std::strtol(text, nullptr, 10);
}

bool isMeant(int file) {
    const char* ending = std::getenv("FAILING_FILE");
    if (ending == nullptr) return false;
    std::array<char, PATH_MAX> path{};
    const std::string link = "/proc/self/fd/" + std::to_string(file);
    const ssize_t size = ::readlink(link.c_str(), path.data(), path.size());
    return size > 0 &&
           std::string_view(path.data(), static_cast<std::size_t>(size)).ends_with(ending);
}

}  // namespace

extern "C" __attribute__((visibility("default"))) ssize_t write(int file, const void* data,
                                                                size_t size) {
    static std::atomic<long> count{0};
    if (isMeant(file)) {
        const long number = ++count;
        if (number >= settingOf("FAILING_FROM", LONG_MAX) &&
            number <= settingOf("FAILING_TO", LONG_MAX)) {
            errno = EIO;
            return -1;
        }
        size = std::min(size, static_cast<std::size_t>(settingOf("SHORT_WRITES", LONG_MAX)));
    }
    return ::syscall(SYS_write, file, data, size);
}
