#include "host/runner/PluginFinder.hpp"

#include "host/PluginLoader.hpp"

#include <algorithm>
#include <filesystem>

#include <Poco/Exception.h>
#include <Poco/SharedLibrary.h>
#include <fmt/format.h>

namespace Quoril::Runner {

namespace {
namespace fs = std::filesystem;

bool isFile(const std::string& path) {
    std::error_code error;
    return fs::exists(path, error) && !fs::is_directory(path, error);
}

bool isBareName(const std::string& path) {
    return !fs::path(path).has_parent_path();
}

/// What the system has against the path, beyond that nothing is there.
std::string findCause(const std::string& path) {
    std::error_code error;
    const bool isMissing = fs::status(path, error).type() == fs::file_type::not_found;
    return isMissing || !error ? "" : ": " + error.message();
}

std::string describeMissing(const PluginEntry& entry, const std::vector<std::string>& candidates) {
    const std::string& path = entry.path.text;
    std::string text = fmt::format("plug-in '{}' was not found; looked for {}{}", path,
                                   fmt::join(candidates, ", "), findCause(candidates.front()));
    if (isBareName(path))
        text += fmt::format(
            " (a bare name is looked for beside the program alone; for a file {} "
            "write './{}')",
            entry.baseFolder.empty() ? "of the current folder" : "of the flow file's folder", path);
    return text;
}

void loadPlugin(const PluginEntry& entry, const std::string& programFolder,
                Core::PluginLoader& loader, Problems& problems) {
    if (isBareName(entry.path.text) && programFolder.empty()) {
        problems.add(entry.path.place, fmt::format("plug-in '{}': the program's folder is not "
                                                   "known; write a path",
                                                   entry.path.text));
        return;
    }
    const std::vector<std::string> candidates = listCandidates(entry, programFolder);
    const auto path = std::find_if(candidates.begin(), candidates.end(), isFile);
    if (path == candidates.end()) {
        problems.add(entry.path.place, describeMissing(entry, candidates));
        return;
    }
    try {
        loader.load(*path);
    } catch (const Poco::Exception& error) {
        problems.add(entry.path.place, error.message());
    }
}
}  // namespace

std::vector<std::string> listCandidates(const PluginEntry& entry,
                                        const std::string& programFolder) {
    // What lies about in the folder where somebody works must not be run in a module's place.
    const std::string& folder = isBareName(entry.path.text) ? programFolder : entry.baseFolder;
    // The system would search folders of its own for a path without separator.
    const std::string full = fs::absolute(fs::path(folder) / entry.path.text).string();
    const std::string ending = Poco::SharedLibrary::suffix();
    if (full.ends_with(ending)) return {full};
    return {full, full + ending};
}

void loadPlugins(const std::vector<PluginEntry>& entries, const std::string& programFolder,
                 Core::PluginLoader& loader, Problems& problems) {
    for (const PluginEntry& entry : entries)
        loadPlugin(entry, programFolder, loader, problems);
}

}  // namespace Quoril::Runner
