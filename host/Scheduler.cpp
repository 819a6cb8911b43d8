#include "host/Scheduler.hpp"

#include "framework/Filter.hpp"
#include "host/PacedSource.hpp"

#include <algorithm>

namespace Quoril::Core {

Scheduler::Scheduler(Clock& clock) : clock_(clock) {}

void Scheduler::begin(const Pacing& pacing) {
    pacing_ = pacing;
    isDraining_ = false;
    isEnding_ = false;
    // What waits from before the run is looked at once, as after an edit.
    isAfterEdit_ = true;
    sourceState_ = SourceState::kUnfinished;
    schedule_.refresh();
    for (FilterTask* task : schedule_.getOrder())
        task->begin();
}

RoundResult Scheduler::round(std::uint64_t editCount) {
    RoundResult result;
    if (editCount != seenEdits_) isAfterEdit_ = true;
    seenEdits_ = editCount;
    if (schedule_.isStale()) {
        schedule_.refresh();
        isAfterEdit_ = true;
    }
    if (isAfterEdit_)
        for (FilterTask* task : schedule_.getOrder())
            task->finishCall();  // edits push too
    for (FilterTask* task : schedule_.getOrder()) {
        if (isEnding_) return result;
        if (task->isSource())
            runSource(*task, result);
        else
            runReader(*task, result);
        if (schedule_.isStale()) {
            // The call changed pins or connections: the next round sees to it.
            result.hasMoved = true;
            return result;
        }
    }
    isAfterEdit_ = false;
    updateSourceState();
    return result;
}

void Scheduler::runSource(FilterTask& task, RoundResult& result) {
    if (isDraining_ || !isDue(task, result)) return;
    call(task);
    if (schedule_.isStale()) return;
    const bool hasPushed = task.finishCall();
    pace(task, hasPushed);
    if (hasPushed)
        result.hasMoved = true;
    else if (task.getPacedSource() == nullptr || !task.getPacedSource()->isFinished())
        result.mustPoll = true;
}

bool Scheduler::isDue(FilterTask& task, RoundResult& result) {
    const PacedSource* paced = task.getPacedSource();
    if (paced != nullptr && paced->isFinished()) {
        task.getPacer().forgetOwnTime();
        return isAfterEdit_;
    }
    switch (pacing_.mode) {
        case Pacing::Mode::kMaximum:
            return task.findRoom();
        case Pacing::Mode::kFactor:
            return isDueAt(task.getPacer().getStampDue(), result);
        case Pacing::Mode::kOwn:
            break;
    }
    if (paced == nullptr) return true;
    const std::optional<double> dueTime = paced->getNextDueTime();
    if (!dueTime) {
        task.getPacer().forgetOwnTime();
        return task.findRoom();
    }
    return isDueAt(task.getPacer().getOwnDue(*dueTime, clock_.now()), result);
}

bool Scheduler::isDueAt(const std::optional<Clock::Instant>& due, RoundResult& result) {
    if (!due || *due <= clock_.now()) return true;
    result.due = result.due ? std::min(*result.due, *due) : *due;
    return false;
}

void Scheduler::pace(FilterTask& task, bool hasPushed) {
    if (pacing_.mode != Pacing::Mode::kFactor) return;
    if (hasPushed)
        task.getPacer().notePush(task.getLastStamp(), pacing_.factor, clock_.now());
    else
        task.getPacer().noteIdle();
}

void Scheduler::runReader(FilterTask& task, RoundResult& result) {
    const unsigned waitingAtStart = task.getWaitingCount();
    if (task.hasNews() || (isAfterEdit_ && waitingAtStart > 0)) task.isPending = true;
    bool hasTaken = false;
    // No more calls than samples wait: a filter that feeds itself, or is fed meanwhile, must not
    // keep edits out for ever.
    for (unsigned calls = 0; task.isPending && !isEnding_; ++calls) {
        if (calls > waitingAtStart) {
            result.hasMoved = true;
            break;
        }
        if (pacing_.mode == Pacing::Mode::kMaximum && !task.findRoom()) break;
        const std::uint64_t takenBefore = task.getTakenCount();
        call(task);
        if (schedule_.isStale()) return;
        if (task.finishCall()) result.hasMoved = true;
        const bool tookNow = task.getTakenCount() != takenBefore;
        if (tookNow) hasTaken = true;
        if (task.hasNews() || (tookNow && task.getWaitingCount() > 0)) task.isPending = true;
    }
    if (!hasTaken) return;
    result.hasMoved = true;
    task.tellRoom();
}

void Scheduler::call(FilterTask& task) {
    filterInCall_ = &task.getFilter();
    task.call(onError_);
    filterInCall_ = nullptr;
}

void Scheduler::updateSourceState() {
    SourceState state = SourceState::kNone;
    for (const FilterTask* task : schedule_.getOrder()) {
        if (!task->isSource()) continue;
        const PacedSource* paced = task->getPacedSource();
        const bool isUnfinished = paced == nullptr ? task->hasPushedInRun() : !paced->isFinished();
        if (isUnfinished) {
            sourceState_ = SourceState::kUnfinished;
            return;
        }
        if (paced != nullptr) state = SourceState::kFinished;
    }
    sourceState_ = state;
}

}  // namespace Quoril::Core
