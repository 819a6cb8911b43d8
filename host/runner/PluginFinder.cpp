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

void loadPlugin(const PluginEntry& entry, const std::string& programFolder,
                Core::PluginLoader& loader, Problems& problems) {
    const std::vector<std::string> candidates = listCandidates(entry, programFolder);
    const auto path = std::find_if(candidates.begin(), candidates.end(), isFile);
    if (path == candidates.end()) {
        problems.add(entry.path.place, fmt::format("plug-in '{}' was not found; looked for {}",
                                                   entry.path.text, fmt::join(candidates, ", ")));
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
    const fs::path path(entry.path.text);
    std::vector<fs::path> places = {fs::path(entry.baseFolder) / path};
    const bool isBareName = !path.has_parent_path();
    if (isBareName && !programFolder.empty()) places.push_back(fs::path(programFolder) / path);
    std::vector<std::string> candidates;
    for (const fs::path& place : places) {
        // A path without separator would be searched in the system's folders.
        const std::string full = fs::absolute(place).lexically_normal().string();
        candidates.push_back(full);
        const std::string ending = Poco::SharedLibrary::suffix();
        if (!full.ends_with(ending)) candidates.push_back(full + ending);
    }
    return candidates;
}

void loadPlugins(const std::vector<PluginEntry>& entries, const std::string& programFolder,
                 Core::PluginLoader& loader, Problems& problems) {
    for (const PluginEntry& entry : entries)
        loadPlugin(entry, programFolder, loader, problems);
}

}  // namespace Quoril::Runner
