#pragma once

#include "framework/Export.hpp"
#include "host/Clock.hpp"
#include "host/FilterTask.hpp"
#include "host/Pacing.hpp"
#include "host/Schedule.hpp"

#include <atomic>
#include <cstdint>
#include <optional>

namespace Quoril::Core {

/// What a round of a layout came to.
struct RoundResult {
    bool hasMoved = false;  ///< something was pushed or taken: there may be more to do
    bool mustPoll = false;  ///< a source has nothing to send just now and cannot say when
    std::optional<Clock::Instant> due;  ///< when the next source is due
};

/// How far the sources of a layout are.
enum class SourceState {
    kNone,        ///< no source that could tell
    kFinished,    ///< all that can tell are finished
    kUnfinished,  ///< one is not finished, or sends without being able to tell
};

/// Calls the filters of one layout, round by round, without a thread of its own.
///
/// A round goes through the filters in the order of their connections. A source is called once if
/// it is due; a filter with inputs if something new came (or an edit was made and samples wait),
/// and again while its calls take samples and more wait. Other layouts hear of pushed samples at
/// the end of the call that pushed them.
///
/// Used under the layout's lock, but for the operations that say otherwise.
class QUORIL_CORE_API Scheduler {
 public:
    explicit Scheduler(Clock& clock);

    [[nodiscard]] Schedule& getSchedule() noexcept { return schedule_; }
    void setErrorHandler(ErrorHandler handler) { onError_ = std::move(handler); }

    /// A run begins.
    void begin(const Pacing& pacing);
    /// From now on sources are not called. Safe from any thread.
    void drain() noexcept { isDraining_ = true; }
    /// No call is made any more. Safe from any thread.
    void end() noexcept { isEnding_ = true; }

    /// @param editCount  number of edits that the layout has seen so far
    RoundResult round(std::uint64_t editCount);

    /// The filter whose call is under way, or null. A waiting call gives up the layout's lock.
    [[nodiscard]] const Filter* getFilterInCall() const noexcept { return filterInCall_; }
    /// As of the last round. Safe from any thread.
    [[nodiscard]] SourceState getSourceState() const noexcept { return sourceState_; }

 private:
    void runSource(FilterTask& task, RoundResult& result);
    void runReader(FilterTask& task, RoundResult& result);
    [[nodiscard]] bool isDue(FilterTask& task, RoundResult& result);
    [[nodiscard]] bool isDueAt(const std::optional<Clock::Instant>& due, RoundResult& result);
    void call(FilterTask& task);
    void pace(FilterTask& task, bool hasPushed);
    void updateSourceState();

    Clock& clock_;
    Schedule schedule_;
    ErrorHandler onError_;
    Pacing pacing_;
    std::uint64_t seenEdits_ = 0;
    bool isAfterEdit_ = true;
    const Filter* filterInCall_ = nullptr;
    std::atomic<bool> isDraining_{false};
    std::atomic<bool> isEnding_{false};
    std::atomic<SourceState> sourceState_{SourceState::kUnfinished};
};

}  // namespace Quoril::Core
