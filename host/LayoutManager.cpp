#include "host/LayoutManager.hpp"

#include "framework/Filter.hpp"
#include "host/Activity.hpp"
#include "host/EditGate.hpp"
#include "host/SynchronizerLock.hpp"

#include <algorithm>
#include <utility>

namespace Quoril::Core {

namespace {

/// How long a layout whose sources cannot say when they have something rests between two looks, and
/// how long once so many looks in a row found nothing: a look costs up to 20 us, and a layout that
/// idles shall take less than 1 % of a core. Edits end the rest in any case.
constexpr std::chrono::milliseconds kIdleTime{1};
constexpr std::chrono::milliseconds kLongIdleTime{5};
constexpr int kShortIdleLooks = 100;
/// How often a thread that shall end is woken from its filters' sleep.
constexpr long kJoinMilliseconds = 10;

}  // namespace

LayoutManager::LayoutManager(const std::string& name, std::chrono::nanoseconds period, Clock& clock,
                             std::shared_ptr<Activity> activity)
    : NamedObject(name),
      period_(period),
      clock_(clock),
      signal_(std::make_shared<WakeSignal>(std::move(activity))),
      lock_(std::make_shared<Synchronizer::Lock>(signal_)),
      scheduler_(clock) {
    synchronizer_.setLock(lock_);
    lock_->endWaits();
}

LayoutManager::~LayoutManager() = default;

void LayoutManager::adopt(Filter& filter) {
    const Synchronizer::DisablerLocker lock(filter.getSynchronizer(), &synchronizer_);
    scheduler_.getSchedule().add(filter);
    filter.setManager(this);
}

void LayoutManager::release(Filter& filter) {
    scheduler_.getSchedule().remove(filter);
    filter.setManager(nullptr);
}

void LayoutManager::whileAtRest(const Filter& filter, const std::function<void()>& operation) {
    const EditGate gate;
    for (;;) {
        const Synchronizer::DisablerLocker lock(&synchronizer_, nullptr);
        if (scheduler_.getFilterInCall() != &filter) return operation();
        // The call waits for data and has given the lock up; it comes back for it now. Whether
        // it may wait again is for start and stop alone to say.
        lock_->endPresentWaits();
    }
}

void LayoutManager::start(const Pacing& pacing) {
    {
        const Synchronizer::DisablerLocker lock(&synchronizer_, nullptr);
        scheduler_.begin(pacing);
    }
    isDraining_ = false;
    isStopping_ = false;
    lock_->allowWaits();
    // Busy from here on, so that nobody takes the flow for finished before the first round.
    signal_->begin();
    thread_ = std::make_unique<Poco::Thread>(getName());
    thread_->startFunc([this] { run(); });
}

void LayoutManager::requestDrain() {
    isDraining_ = true;
    scheduler_.drain();
    lock_->endWaits();
    signal_->set();
    wakeSleeper();
}

void LayoutManager::requestStop() {
    isStopping_ = true;
    scheduler_.end();
    lock_->endWaits();
    signal_->set();
    wakeSleeper();
}

void LayoutManager::wakeSleeper() {
    if (thread_) thread_->wakeUp();
}

void LayoutManager::join() {
    if (!thread_) return;
    // A filter may sleep several times in one call.
    while (!thread_->tryJoin(kJoinMilliseconds))
        wakeSleeper();
    thread_.reset();
}

void LayoutManager::run() {
    EditGate::setIsLayoutThread(true);
    while (!isStopping_) {
        RoundResult result;
        roundStart_ = clock_.now();
        {
            const Synchronizer::DisablerLocker lock(&synchronizer_, nullptr);
            result = scheduler_.round(signal_->getEditCount());
        }
        if (result.hasMoved)
            idleLooks_ = 0;
        else
            waitForWork(result);
        keepPeriod();
    }
    signal_->end();
}

void LayoutManager::waitForWork(const RoundResult& result) {
    std::optional<Clock::Instant> deadline = result.due;
    if (result.mustPoll) {
        const auto idleTime = idleLooks_ < kShortIdleLooks ? kIdleTime : kLongIdleTime;
        if (idleLooks_ < kShortIdleLooks) ++idleLooks_;
        const Clock::Instant nextLook = std::max(clock_.now() + idleTime, roundStart_ + period_);
        deadline = deadline ? std::min(*deadline, nextLook) : nextLook;
    }
    clock_.wait(*signal_, deadline, WakeSignal::Meanwhile::kResting);
}

void LayoutManager::keepPeriod() {
    if (period_ <= std::chrono::nanoseconds(0)) return;
    const Clock::Instant next = roundStart_ + period_;
    while (!isStopping_ && !isDraining_ && clock_.now() < next)
        clock_.wait(*signal_, next, WakeSignal::Meanwhile::kBusy);
}

}  // namespace Quoril::Core
