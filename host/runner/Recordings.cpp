#include "host/runner/Recordings.hpp"

#include "framework/Filter.hpp"
#include "framework/ValueProperty.hpp"
#include "host/Flow.hpp"
#include "host/runner/ExceptionText.hpp"
#include "host/runner/PropertyText.hpp"

#include <cstring>

#include <fmt/format.h>

namespace Quoril::Runner {

namespace {
constexpr const char* kRecorderClass = "FilterRecordSensorFile";
constexpr const char* kRecord = "Record";
constexpr const char* kFileName = "File Name";

/// The property's value as a user writes it; empty if there is no such property.
std::string valueOf(const Core::Filter& filter, const std::string& name) {
    const Core::AbstractProperty* property = filter.getPropertyBag()->find(name);
    return property == nullptr ? std::string() : describeProperty(*property).value;
}

/// The switch by which a filter records, or null.
Core::ValueProperty<bool>* findRecord(const Core::Filter& filter) {
    return dynamic_cast<Core::ValueProperty<bool>*>(filter.getPropertyBag()->find(kRecord));
}

const Place& placeOf(const FilterEntry& entry, const std::string& property) {
    for (const PropertyEntry& setting : entry.properties)
        if (setting.name.text == property) return setting.value.place;
    return entry.name.place;
}
}  // namespace

void warnOfLossyTextColumns(const FilterEntry& entry, const Core::Filter& filter,
                            Problems& problems) {
    if (std::strcmp(filter.getClassName(), kRecorderClass) != 0) return;
    if (valueOf(filter, "Binary") != "false") return;
    for (const std::string& name : filter.getPropertyBag()->getNames()) {
        if (name.rfind("ColTypes#", 0) != 0) continue;
        const std::string type = valueOf(filter, name);
        if (type != "UCHAR" && type != "CHAR") continue;
        problems.warn(placeOf(entry, name),
                      fmt::format("filter '{}' writes '{}' columns as single characters of text: "
                                  "their values 9 to 13 and 32 vanish when the file is read; "
                                  "choose another type for '{}', or set 'Binary'",
                                  entry.name.text, type, name));
    }
}

void closeRecordings(const Core::Flow& flow, Problems& problems) {
    for (const Core::Filter* filter : flow.getFilters()) {
        Core::ValueProperty<bool>* record = findRecord(*filter);
        if (record == nullptr || !record->get()) continue;
        try {
            record->set(false);
        } catch (const Poco::Exception& error) {
            problems.add({},
                         fmt::format("the recording of filter '{}' cannot be ended: {}",
                                     filter->getName(), describeException(error)),
                         Severity::kFailure);
        }
    }
}

RecordingWatch::RecordingWatch(const Core::Flow& flow, OnEnd onEnd) : onEnd_(std::move(onEnd)) {
    for (const Core::Filter* filter : flow.getFilters())
        if (Core::AbstractProperty* record = findRecord(*filter)) {
            watched_.push_back({filter, record});
            record->addObserver(*this);
        }
}

RecordingWatch::~RecordingWatch() {
    for (const Watched& watched : watched_)
        watched.record->removeObserver(*this);
}

void RecordingWatch::valueChanged(const Core::AbstractProperty& property) {
    if (std::this_thread::get_id() == editor_ || hasValue(property, "true")) return;
    for (const Watched& watched : watched_)
        if (watched.record == &property)
            onEnd_(watched.filter->getName(), valueOf(*watched.filter, kFileName));
}

}  // namespace Quoril::Runner
