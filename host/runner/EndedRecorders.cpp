#include "host/runner/EndedRecorders.hpp"

#include "framework/AbstractProperty.hpp"
#include "framework/Filter.hpp"
#include "host/Flow.hpp"
#include "host/runner/PropertyText.hpp"
#include "host/runner/Recordings.hpp"

namespace Quoril::Runner {

void EndedRecorders::add(const std::string& filter) {
    const std::lock_guard lock(mutex_);
    added_.insert(filter);
}

void EndedRecorders::letPass() {
    std::set<std::string> added;
    {
        const std::lock_guard lock(mutex_);
        added.swap(added_);
    }
    for (const std::string& name : added) {
        const Core::Filter* filter = flow_.findFilter(name);
        if (filter == nullptr || hasValue(*findRecord(*filter), "true")) continue;
        filters_.insert(name);
        for (Core::AbstractInputPin* pin : filter->getInputPins()) {
            if (pin->getBuffer().size == 1) continue;
            buffers_.push_back({pin, pin->getBuffer()});
            pin->setBuffer({.size = 1, .isLifo = false});
        }
    }
}

void EndedRecorders::giveBack() {
    for (const Buffer& buffer : buffers_)
        buffer.pin->setBuffer(buffer.settings);
    buffers_.clear();
    const std::lock_guard lock(mutex_);
    added_.merge(filters_);
    filters_.clear();
}

}  // namespace Quoril::Runner
