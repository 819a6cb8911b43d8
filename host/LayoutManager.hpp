#pragma once

#include "framework/NamedObject.hpp"
#include "framework/Synchronizer.hpp"
#include "host/Clock.hpp"
#include "host/Pacing.hpp"
#include "host/Scheduler.hpp"

#include <atomic>
#include <chrono>
#include <functional>
#include <memory>
#include <string>

#include <Poco/Thread.h>

namespace Quoril::Core {

class Activity;
class Filter;

/// Filters that one thread runs, in rounds, under one lock.
///
/// The lock is free between two rounds, and fair, so that edits get in. A layout without work
/// sleeps until it is signalled or a source is due; while a source has nothing to send and cannot
/// say when, it looks again every millisecond, and every 5 ms after 100 looks in vain.
class QUORIL_CORE_API LayoutManager : public NamedObject {
 public:
    /// @param period    shortest time between two rounds; 0: whenever there is work
    /// @param activity  where the layout counts as busy; null for none
    LayoutManager(const std::string& name, std::chrono::nanoseconds period, Clock& clock,
                  std::shared_ptr<Activity> activity);
    /// The layout is stopped and has no filters any more.
    ~LayoutManager() override;

    [[nodiscard]] Synchronizer& getSynchronizer() noexcept { return synchronizer_; }
    [[nodiscard]] WakeSignal& getSignal() const noexcept { return *signal_; }
    /// Used under the synchronizer.
    [[nodiscard]] Scheduler& getScheduler() noexcept { return scheduler_; }

    /// Places a filter under this layout; release it from another one before.
    void adopt(Filter& filter);
    /// Takes a filter out. Call within whileAtRest().
    void release(Filter& filter);

    /// Runs the operation under the lock while no call of the filter is under way. Calls that wait
    /// for data are ended.
    void whileAtRest(const Filter& filter, const std::function<void()>& operation);

    void start(const Pacing& pacing);
    /// From now on sources are not called and waits end at once.
    void requestDrain();
    void requestStop();
    /// Ends the sleep that a filter's call is in.
    void wakeSleeper();
    /// Waits for the thread's end, after requestStop().
    void join();

 private:
    void run();
    void waitForWork(const RoundResult& result);
    void keepPeriod();

    const std::chrono::nanoseconds period_;
    Clock& clock_;
    const std::shared_ptr<WakeSignal> signal_;
    const std::shared_ptr<Synchronizer::Lock> lock_;
    Synchronizer synchronizer_;
    Scheduler scheduler_;
    Clock::Instant roundStart_{};
    int idleLooks_ = 0;
    std::atomic<bool> isDraining_{false};
    std::atomic<bool> isStopping_{false};
    std::unique_ptr<Poco::Thread> thread_;
};

}  // namespace Quoril::Core
