#include "host/runner/RecordingWatch.hpp"

#include "framework/Filter.hpp"
#include "host/Flow.hpp"
#include "host/runner/PropertyText.hpp"
#include "host/runner/Recordings.hpp"

namespace Quoril::Runner {

RecordingWatch::RecordingWatch(const Core::Flow& flow, OnEvent onEvent)
    : onEvent_(std::move(onEvent)) {
    for (const Core::Filter* filter : flow.getFilters()) {
        Core::AbstractProperty* record = findRecord(*filter);
        if (record == nullptr) continue;
        Recording recording;
        recording.filter = filter;
        recording.record = record;
        recordings_.push_back(std::move(recording));
    }
    for (const Recording& recording : recordings_)
        recording.record->addObserver(*this);
}

RecordingWatch::~RecordingWatch() {
    for (const Recording& recording : recordings_)
        recording.record->removeObserver(*this);
}

std::vector<RecordedFile> RecordingWatch::look() {
    std::vector<RecordedFile> files;
    std::vector<Found> found;
    {
        const std::lock_guard lock(mutex_);
        for (Recording& recording : recordings_) {
            const auto facts = recording.file ? recording.file->look() : std::nullopt;
            if (!facts) continue;
            for (Found& event : lookFor(recording, *facts))
                found.push_back(std::move(event));
            files.push_back({recording.number, recording.path, facts->size, facts->fileSystem,
                             facts->freeBytes});
        }
    }
    tell(found);
    return files;
}

void RecordingWatch::valueChanged(const Core::AbstractProperty& property) {
    tell(note(property));
}

std::vector<RecordingWatch::Found> RecordingWatch::note(const Core::AbstractProperty& property) {
    const bool isOn = hasValue(property, "true");
    const std::lock_guard lock(mutex_);
    for (Recording& recording : recordings_) {
        if (recording.record != &property) continue;
        if (!isOn) return end(recording);
        begin(recording);
    }
    return {};
}

// Under the property's synchronizer: the filter's others can be read without waiting.
void RecordingWatch::begin(Recording& recording) {
    const std::vector<std::string> paths = listWrittenFiles(*recording.filter);
    recording.number = ++starts_;
    recording.path = paths.empty() ? "" : paths.front();
    recording.file = std::make_unique<WatchedFile>(recording.path);
    recording.told.reset();
}

std::vector<RecordingWatch::Found> RecordingWatch::end(Recording& recording) const {
    std::vector<Found> found;
    const auto facts = recording.file ? recording.file->look() : std::nullopt;
    if (facts) found = lookFor(recording, *facts);
    recording.file.reset();
    if (std::this_thread::get_id() != editor_)
        found.push_back({Event::kEnded, recording.filter->getName(), recording.path});
    return found;
}

std::vector<RecordingWatch::Found> RecordingWatch::lookFor(Recording& recording,
                                                           const FileFacts& facts) {
    if (facts.isInPlace && !facts.isRemoved) return {};
    const Event event = facts.isRemoved ? Event::kRemoved : Event::kMoved;
    if (recording.told == event) return {};
    recording.told = event;
    return {{event, recording.filter->getName(), recording.path}};
}

void RecordingWatch::tell(const std::vector<Found>& found) const {
    for (const Found& one : found)
        onEvent_(one.event, one.filter, one.path);
}

}  // namespace Quoril::Runner
