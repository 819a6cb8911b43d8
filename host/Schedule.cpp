#include "host/Schedule.hpp"

#include "framework/AbstractInputPin.hpp"
#include "framework/AbstractOutputPin.hpp"
#include "framework/Filter.hpp"
#include "host/FilterTask.hpp"
#include "host/Topology.hpp"

#include <algorithm>
#include <set>

namespace Quoril::Core {

Schedule::Schedule() = default;
Schedule::~Schedule() = default;

void Schedule::add(Filter& filter) {
    tasks_.push_back(std::make_unique<FilterTask>(filter));
    version_ = 0;
}

void Schedule::remove(const Filter& filter) {
    order_.clear();
    std::erase_if(tasks_, [&](const auto& task) { return &task->getFilter() == &filter; });
    version_ = 0;
}

FilterTask* Schedule::find(const Filter& filter) const {
    const auto found = std::find_if(tasks_.begin(), tasks_.end(), [&](const auto& task) {
        return &task->getFilter() == &filter;
    });
    return found == tasks_.end() ? nullptr : found->get();
}

bool Schedule::isStale() const noexcept {
    return version_ != Topology::version();
}

void Schedule::refresh() {
    version_ = Topology::version();
    for (const auto& task : tasks_)
        task->wire();
    sort();
    extendRoomOfSources();
}

void Schedule::sort() {
    order_.clear();
    std::vector<FilterTask*> rest;
    for (const auto& task : tasks_)
        if (task->getFilter().getIsScheduled()) rest.push_back(task.get());
    while (!rest.empty()) {
        auto next = std::find_if(rest.begin(), rest.end(),
                                 [&](const FilterTask* task) { return areWritersPlaced(*task); });
        // All that are left wait for each other: the cycle is opened at its first filter.
        if (next == rest.end()) next = rest.begin();
        order_.push_back(*next);
        rest.erase(next);
    }
}

bool Schedule::areWritersPlaced(const FilterTask& task) const {
    const Filter& filter = task.getFilter();
    const auto& pins = filter.getInputPins();
    return std::all_of(pins.begin(), pins.end(), [&](const AbstractInputPin* pin) {
        const AbstractOutputPin* writer = pin->getOutputPin();
        if (writer == nullptr || writer->getManager() == nullptr) return true;
        const PinManager& other = *writer->getManager();
        if (other.getManager() != filter.getManager() || &other == &filter) return true;
        const auto* otherFilter = dynamic_cast<const Filter*>(&other);
        return otherFilter == nullptr || !otherFilter->getIsScheduled() || isPlaced(*otherFilter);
    });
}

bool Schedule::isPlaced(const Filter& filter) const {
    return std::any_of(order_.begin(), order_.end(),
                       [&](const FilterTask* task) { return &task->getFilter() == &filter; });
}

/// A source needs room not only at the pins that it feeds but also behind them, as far as the
/// layout goes: its sample may run through several filters within one round.
void Schedule::extendRoomOfSources() {
    for (FilterTask* source : order_) {
        if (!source->isSource()) continue;
        std::set<const Filter*> reached{&source->getFilter()};
        std::vector<const Filter*> front{&source->getFilter()};
        while (!front.empty()) {
            const Filter& filter = *front.back();
            front.pop_back();
            if (const FilterTask* task = find(filter)) source->addRoomPins(task->getRoomPins());
            for (const AbstractOutputPin* output : filter.getOutputPins())
                for (const AbstractInputPin* reader : output->getAttachedPins()) {
                    const auto* next = dynamic_cast<const Filter*>(reader->getManager());
                    if (next == nullptr || next->getManager() != filter.getManager()) continue;
                    if (reached.insert(next).second) front.push_back(next);
                }
        }
    }
}

}  // namespace Quoril::Core
