#include "fuzz/FolderWatch.hpp"

#include "fuzz/Harness.hpp"

#if defined(__linux__)
#include <array>
#include <sys/inotify.h>
#include <unistd.h>
#endif

namespace Fuzz {

#if defined(__linux__)

struct FolderWatch::Impl {
    int queue = -1;
};

FolderWatch::FolderWatch(const std::string& folder) : impl_(std::make_unique<Impl>()) {
    constexpr unsigned kEvents = IN_OPEN | IN_CREATE | IN_DELETE | IN_MOVE | IN_MODIFY;
    impl_->queue = inotify_init1(IN_NONBLOCK | IN_CLOEXEC);
    require(impl_->queue >= 0 && inotify_add_watch(impl_->queue, folder.c_str(), kEvents) >= 0,
            "the folder cannot be watched");
}

FolderWatch::~FolderWatch() {
    close(impl_->queue);
}

bool FolderWatch::wasTouched() {
    std::array<char, 4096> events{};
    bool isTouched = false;
    while (read(impl_->queue, events.data(), events.size()) > 0)
        isTouched = true;
    return isTouched;
}

#else

struct FolderWatch::Impl {};
FolderWatch::FolderWatch(const std::string& /*folder*/) {}
FolderWatch::~FolderWatch() = default;
bool FolderWatch::wasTouched() {
    return false;
}

#endif

}  // namespace Fuzz
