#include "tests/stress/Watchdog.hpp"

#include "tests/stress/Failure.hpp"
#include "tests/stress/Platform.hpp"

#include <cstdlib>

namespace Stress {

namespace {
constexpr std::chrono::milliseconds kInterval{100};
}

Watchdog::Watchdog(std::chrono::seconds patience)
    : patience_(patience), thread_([this] { run(); }) {}

Watchdog::~Watchdog() {
    {
        const std::lock_guard lock(mutex_);
        isEnding_ = true;
    }
    ended_.notify_one();
    thread_.join();
}

Beat& Watchdog::addBeat(const std::string& name) {
    const std::lock_guard lock(mutex_);
    return watched_.emplace_back(name).beat;
}

void Watchdog::run() {
    nameThisThread("watchdog");
    std::unique_lock lock(mutex_);
    while (!ended_.wait_for(lock, kInterval, [this] { return isEnding_; }))
        for (Watched& watched : watched_)
            look(watched);
}

void Watchdog::look(Watched& watched) const {
    const auto now = std::chrono::steady_clock::now();
    const std::uint64_t count = watched.beat.getCount();
    if (count != watched.lastCount || !watched.beat.getIsDue()) {
        watched.lastCount = count;
        watched.lastChange = now;
    }
    if (now - watched.lastChange < patience_) return;
    tellFailure("no progress of '" + watched.beat.getName() + "' for " +
                std::to_string(patience_.count()) + " s");
    writeAllStacks();
    std::_Exit(EXIT_FAILURE);
}

}  // namespace Stress
