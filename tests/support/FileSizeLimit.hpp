#pragma once

#include <csignal>
#include <sys/resource.h>

namespace Support {

/// Files of this process cannot grow beyond a size, for the scope: a disk that is full.
class FileSizeLimit {
 public:
    explicit FileSizeLimit(rlim_t bytes) {
        handlerBefore_ = std::signal(SIGXFSZ, SIG_IGN);
        getrlimit(RLIMIT_FSIZE, &before_);
        const rlimit limit{bytes, before_.rlim_max};
        setrlimit(RLIMIT_FSIZE, &limit);
    }
    ~FileSizeLimit() {
        setrlimit(RLIMIT_FSIZE, &before_);
        std::signal(SIGXFSZ, handlerBefore_);
    }
    FileSizeLimit(const FileSizeLimit&) = delete;
    FileSizeLimit& operator=(const FileSizeLimit&) = delete;

 private:
    rlimit before_{};
    void (*handlerBefore_)(int) = nullptr;
};

}  // namespace Support
