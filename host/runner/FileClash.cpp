#include "host/runner/FileClash.hpp"

#include "framework/Filter.hpp"
#include "host/Flow.hpp"
#include "host/runner/FlowModel.hpp"
#include "host/runner/Problems.hpp"
#include "host/runner/PropertyText.hpp"

#include <filesystem>
#include <string>
#include <vector>

#include <Poco/Path.h>
#include <fmt/format.h>

namespace Quoril::Runner {

namespace {
namespace fs = std::filesystem;

constexpr const char* kRecord = "Record";

struct NamedFile {
    std::string filter;
    const PropertyEntry* entry;
    fs::path path;
    bool isRecording;
};

bool isRecorder(const Core::Filter& filter) {
    return filter.getPropertyBag()->find(kRecord) != nullptr;
}

void addFiles(const FilterEntry& entry, const Core::Filter& filter, std::vector<NamedFile>& files) {
    for (const PropertyEntry& setting : entry.properties) {
        const Core::AbstractProperty* property = filter.getPropertyBag()->find(setting.name.text);
        if (property == nullptr || setting.value.text.empty()) continue;
        const PropertyDescription description = describeProperty(*property);
        if (description.kind != PropertyKind::kFileName) continue;
        files.push_back({filter.getName(), &setting, Poco::Path::expand(setting.value.text),
                         description.isWrittenFile && isRecorder(filter)});
    }
}

bool isDevice(const fs::path& path) {
    std::error_code error;
    return fs::is_other(fs::status(path, error));
}

bool isSameFile(const fs::path& one, const fs::path& other) {
    if (isDevice(one)) return false;
    std::error_code error;
    if (fs::equivalent(one, other, error)) return true;
    // One that is not there yet can only be told by its name.
    const fs::path name = fs::weakly_canonical(fs::absolute(one, error), error);
    return !error && name == fs::weakly_canonical(fs::absolute(other, error), error);
}
}  // namespace

void checkFileClashes(const FlowModel& model, const Core::Flow& flow, Problems& problems) {
    std::vector<NamedFile> files;
    for (const FilterEntry& entry : model.filters)
        if (const Core::Filter* filter = flow.findFilter(entry.name.text))
            addFiles(entry, *filter, files);
    for (const NamedFile& recording : files) {
        if (!recording.isRecording) continue;
        for (const NamedFile& other : files)
            if (other.filter != recording.filter && isSameFile(recording.path, other.path))
                problems.add(
                    recording.entry->value.place,
                    fmt::format("filter '{}' would record into '{}', a file of filter '{}'",
                                recording.filter, recording.entry->value.text, other.filter));
    }
}

}  // namespace Quoril::Runner
