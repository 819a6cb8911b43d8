#pragma once

#include <atomic>
#include <chrono>
#include <condition_variable>
#include <cstdint>
#include <list>
#include <mutex>
#include <string>
#include <thread>

namespace Stress {

/// The sign of life of one thread.
class Beat {
 public:
    explicit Beat(std::string name) : name_(std::move(name)) {}

    void tick() noexcept { count_.fetch_add(1, std::memory_order_relaxed); }
    [[nodiscard]] std::uint64_t getCount() const noexcept { return count_; }
    /// Whether silence means trouble. Off at first.
    void setIsDue(bool isDue) noexcept {
        tick();
        isDue_ = isDue;
    }
    [[nodiscard]] bool getIsDue() const noexcept { return isDue_; }
    [[nodiscard]] const std::string& getName() const noexcept { return name_; }

 private:
    const std::string name_;
    std::atomic<std::uint64_t> count_{0};
    std::atomic<bool> isDue_{false};
};

/// Looks after threads: when one that is due gives no sign of life for too long, the stacks of all
/// threads are written and the process ends.
class Watchdog {
 public:
    explicit Watchdog(std::chrono::seconds patience);
    ~Watchdog();
    Watchdog(const Watchdog&) = delete;
    Watchdog& operator=(const Watchdog&) = delete;

    /// A new beat; it lives as long as the watchdog.
    [[nodiscard]] Beat& addBeat(const std::string& name);

 private:
    struct Watched {
        explicit Watched(const std::string& name) : beat(name) {}
        Beat beat;
        std::uint64_t lastCount = 0;
        std::chrono::steady_clock::time_point lastChange = std::chrono::steady_clock::now();
    };

    void run();
    void look(Watched& watched) const;

    const std::chrono::seconds patience_;
    std::mutex mutex_;
    std::condition_variable ended_;
    bool isEnding_ = false;
    std::list<Watched> watched_;
    std::thread thread_;
};

}  // namespace Stress
