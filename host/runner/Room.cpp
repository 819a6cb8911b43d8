#include "host/runner/Room.hpp"

#include "framework/AbstractProperty.hpp"
#include "framework/Filter.hpp"
#include "host/runner/Platform.hpp"
#include "host/runner/PropertyText.hpp"
#include "host/runner/Recordings.hpp"

#include <algorithm>
#include <cstdint>

namespace Quoril::Runner {

namespace {
// A header and some rows; a calibration.
constexpr std::uint64_t kLeastRoomOfRecording = std::uint64_t{64} * 1024;
constexpr std::uint64_t kLeastRoomOfFile = std::uint64_t{4} * 1024;
}  // namespace

std::string findLackOfRoom(const std::string& path, bool isRecording) {
    if (path.empty()) return "";
    const std::string full =
        findFullDisk(path, isRecording ? kLeastRoomOfRecording : kLeastRoomOfFile);
    return full.empty() ? "" : path + ": " + full;
}

std::string findLackOfRoom(const Core::Filter& filter, const Core::AbstractProperty& property,
                           const std::string& text) {
    const PropertyDescription description = describeProperty(property);
    if (description.isWrittenFile)
        return writesAtOnce(filter) ? findLackOfRoom(writtenPathOf(text), false) : "";
    const bool isRecording = isRecordSwitch(filter, property, text, /*isOn=*/true);
    if (!isRecording && description.kind != PropertyKind::kCommand) return "";
    for (const std::string& path : listWrittenFiles(filter)) {
        std::string lack = findLackOfRoom(path, isRecording);
        if (!lack.empty()) return lack;
    }
    return "";
}

bool writesAtOnce(const Core::Filter& filter) {
    const std::vector<std::string> names = filter.getPropertyBag()->getNames();
    return findRecord(filter) == nullptr &&
           std::none_of(names.begin(), names.end(), [&filter](const std::string& name) {
               const Core::AbstractProperty* property = filter.getPropertyBag()->find(name);
               return property != nullptr &&
                      describeProperty(*property).kind == PropertyKind::kCommand;
           });
}

}  // namespace Quoril::Runner
