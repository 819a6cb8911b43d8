#include "host/FilterTask.hpp"

#include "framework/AbstractInputPin.hpp"
#include "framework/AbstractOutputPin.hpp"
#include "framework/Filter.hpp"
#include "host/LayoutManager.hpp"
#include "host/PacedSource.hpp"

#include <algorithm>
#include <exception>

#include <Poco/Exception.h>

namespace Quoril::Core {

namespace {

/// Texts told per filter; a filter whose texts differ at each row must not fill the memory.
constexpr std::size_t kMostToldErrors = 20;

const LayoutManager* layoutOf(const Pin& pin) {
    const PinManager* filter = pin.getManager();
    return filter == nullptr ? nullptr : filter->getManager();
}

WakeSignal* signalOfFilter(const PinManager& filter) {
    const LayoutManager* layout = filter.getManager();
    return layout == nullptr ? nullptr : &layout->getSignal();
}

WakeSignal* signalOf(const Pin& pin) {
    return pin.getManager() == nullptr ? nullptr : signalOfFilter(*pin.getManager());
}

/// Samples that wait and were published: not those that a call in progress has pushed.
unsigned countPublishedWaiting(const AbstractInputPin& pin) {
    // In this order, a push meanwhile makes the answer too small, never too large; its publishing
    // then makes news of it.
    const std::uint64_t published = pin.getPublishedCount();
    const unsigned waiting = pin.getWaitingCount();
    // A full buffer gives up its oldest sample with the next push: nothing is gained by holding
    // back then, and a writer that always is within a call would hold back for ever.
    if (waiting >= pin.getBuffer().size) return waiting;
    const std::uint64_t unpublished = pin.getCounters().pushed - published;
    return unpublished >= waiting ? 0 : waiting - static_cast<unsigned>(unpublished);
}

/// The pins of a row are published one after the other, after the whole row was pushed. What is
/// published only after the reader took it is no news.
bool hasPublishedNews(const AbstractInputPin& pin) {
    return pin.getPublishedCount() != pin.getSeenCount() && countPublishedWaiting(pin) > 0;
}

}  // namespace

FilterTask::FilterTask(Filter& filter)
    : filter_(filter), pacedSource_(dynamic_cast<PacedSource*>(&filter)) {}

void FilterTask::wire() {
    isSource_ = filter_.getInputPins().empty();
    wireInputs();
    wireOutputs();
}

void FilterTask::wireInputs() {
    localInputs_.clear();
    borderInputs_.clear();
    for (AbstractInputPin* pin : filter_.getInputPins()) {
        const AbstractOutputPin* writer = pin->getOutputPin();
        if (writer == nullptr) continue;
        const LayoutManager* layout = layoutOf(*writer);
        // Nobody publishes for a writer without a layout: what it pushed counts at once.
        if (layout == nullptr || layout == filter_.getManager())
            localInputs_.push_back(pin);
        else
            borderInputs_.push_back({pin, signalOf(*writer)});
    }
}

void FilterTask::wireOutputs() {
    outputs_.clear();
    borderReaders_.clear();
    roomPins_.clear();
    for (const AbstractOutputPin* output : filter_.getOutputPins()) {
        outputs_.push_back({output, output->getPushCount()});
        for (AbstractInputPin* reader : output->getAttachedPins()) {
            if (layoutOf(*reader) != filter_.getManager())
                borderReaders_.push_back({reader, signalOf(*reader)});
            if (reader->getBuffer().size > 1) roomPins_.push_back(reader);
        }
    }
}

void FilterTask::addRoomPins(const std::vector<AbstractInputPin*>& pins) {
    for (AbstractInputPin* pin : pins)
        if (std::find(roomPins_.begin(), roomPins_.end(), pin) == roomPins_.end())
            roomPins_.push_back(pin);
}

void FilterTask::begin() {
    pacer_.begin();
    hasPushedInRun_ = false;
}

bool FilterTask::hasNews() const {
    for (const AbstractInputPin* pin : localInputs_)
        if (pin->getCounters().pushed != pin->getSeenCount()) return true;
    for (const Border& border : borderInputs_)
        if (hasPublishedNews(*border.pin)) return true;
    return false;
}

unsigned FilterTask::getWaitingCount() const {
    unsigned most = 0;
    for (const AbstractInputPin* pin : localInputs_)
        most = std::max(most, pin->getWaitingCount());
    for (const Border& border : borderInputs_)
        most = std::max(most, countPublishedWaiting(*border.pin));
    return most;
}

std::uint64_t FilterTask::getTakenCount() const {
    std::uint64_t taken = 0;
    for (const AbstractInputPin* pin : localInputs_)
        taken += pin->getCounters().taken;
    for (const Border& border : borderInputs_)
        taken += border.pin->getCounters().taken;
    return taken;
}

bool FilterTask::findRoom() const {
    if (hasRoom()) return true;
    WakeSignal* own = signalOfFilter(filter_);
    if (own == nullptr) return false;
    own->askForRoom();
    // What was taken before the asking is not told.
    return hasRoom();
}

bool FilterTask::hasRoom() const {
    return std::all_of(roomPins_.begin(), roomPins_.end(), [this](const AbstractInputPin* pin) {
        const unsigned size = pin->getBuffer().size;
        const unsigned waiting = std::min(size, pin->getWaitingCount());
        return size - waiting >= std::min<std::uint64_t>(largestBurst_, size);
    });
}

void FilterTask::call(const ErrorHandler& onError) {
    isPending = false;
    for (AbstractInputPin* pin : localInputs_)
        pin->setSeenCount(pin->getCounters().pushed);
    for (const Border& border : borderInputs_)
        border.pin->setSeenCount(border.pin->getPublishedCount());
    try {
        filter_.process();
    } catch (const Poco::Exception& error) {
        tellError(error.displayText(), onError);
    } catch (const std::exception& error) {
        tellError(error.what(), onError);
    } catch (...) {
        tellError("unknown error", onError);
    }
}

bool FilterTask::finishCall() {
    bool hasPushed = false;
    for (Output& output : outputs_) {
        const std::uint64_t burst = output.pin->getPushCount() - output.pushCount;
        if (burst == 0) continue;
        output.pushCount += burst;
        largestBurst_ = std::max(largestBurst_, burst);
        if (!hasPushed) lastStamp_ = output.pin->getLastTimeStamp();
        hasPushed = true;
    }
    if (hasPushed) hasPushedInRun_ = true;
    publish();
    return hasPushed;
}

void FilterTask::publish() {
    for (const Border& border : borderReaders_) {
        if (border.pin->getPublishedCount() == border.pin->getCounters().pushed) continue;
        border.pin->publish();
        if (border.otherSide != nullptr) border.otherSide->set();
    }
}

void FilterTask::tellRoom() const {
    for (const Border& border : borderInputs_)
        if (border.otherSide != nullptr) border.otherSide->tellRoom();
}

void FilterTask::tellError(const std::string& text, const ErrorHandler& onError) {
    ++errorCount_;
    if (toldErrors_.size() >= kMostToldErrors || !toldErrors_.insert(text).second) return;
    if (onError) onError(filter_.getName(), text);
}

}  // namespace Quoril::Core
