#include "host/runner/Recordings.hpp"

#include "framework/Filter.hpp"
#include "framework/ValueProperty.hpp"
#include "host/Flow.hpp"
#include "host/runner/ExceptionText.hpp"
#include "host/runner/FilterPath.hpp"
#include "host/runner/PropertyText.hpp"

#include <cstring>

#include <Poco/Exception.h>
#include <fmt/format.h>

namespace Quoril::Runner {

namespace {
constexpr const char* kRecorderClass = "FilterRecordSensorFile";
constexpr const char* kRecord = "Record";
constexpr const char* kStandardOutput = "-";

/// The property's value as a user writes it; empty if there is no such property.
std::string valueOf(const Core::Filter& filter, const std::string& name) {
    const Core::AbstractProperty* property = filter.getPropertyBag()->find(name);
    return property == nullptr ? std::string() : describeProperty(*property).value;
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

Core::AbstractProperty* findRecord(const Core::Filter& filter) {
    return dynamic_cast<Core::ValueProperty<bool>*>(filter.getPropertyBag()->find(kRecord));
}

bool isRecordSwitch(const Core::Filter& filter, const Core::AbstractProperty& property,
                    const std::string& text, bool isOn) {
    if (&property != findRecord(filter)) return false;
    const PropertyDescription description = describeProperty(property);
    return toSerialized(description, text) == toSerialized(description, isOn ? "true" : "false");
}

std::string writtenPathOf(const std::string& text) {
    if (text.empty() || text == kStandardOutput) return "";
    return toFilterPath(text);
}

std::vector<std::string> listWrittenFiles(const Core::Filter& filter) {
    std::vector<std::string> paths;
    for (const std::string& name : filter.getPropertyBag()->getNames()) {
        const Core::AbstractProperty* property = filter.getPropertyBag()->find(name);
        if (property == nullptr) continue;
        const PropertyDescription description = describeProperty(*property);
        const std::string path =
            description.isWrittenFile ? writtenPathOf(description.value) : std::string();
        if (!path.empty()) paths.push_back(path);
    }
    return paths;
}

void endRecording(const Core::Filter& filter, const OnRecordingLoss& onLoss) {
    auto& record = dynamic_cast<Core::ValueProperty<bool>&>(*findRecord(filter));
    try {
        record.set(false);
    } catch (const Poco::FileException& error) {
        const std::vector<std::string> paths = listWrittenFiles(filter);
        onLoss({filter.getName(), paths.empty() ? "" : paths.front(), describeCause(error)});
        // The file is closed all the same; only the switch is still on.
        record.set(false);
    }
}

void closeRecordings(const Core::Flow& flow, const OnRecordingLoss& onLoss, Problems& problems) {
    for (const Core::Filter* filter : flow.getFilters()) {
        const Core::AbstractProperty* record = findRecord(*filter);
        if (record == nullptr || !hasValue(*record, "true")) continue;
        try {
            endRecording(*filter, onLoss);
        } catch (const Poco::Exception& error) {
            problems.add({},
                         fmt::format("the recording of filter '{}' cannot be ended: {}",
                                     filter->getName(), describeException(error)),
                         Severity::kFailure);
        }
    }
}

}  // namespace Quoril::Runner
