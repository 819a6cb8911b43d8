#include "tools/common/TemporaryFile.hpp"

#include "tools/common/Platform.hpp"

#include <filesystem>
#include <random>
#include <system_error>

#include <Poco/Exception.h>
#include <fmt/format.h>

namespace SensorFileTool {

namespace fs = std::filesystem;

namespace {

// Names are random: after so many that are taken, something else is wrong.
constexpr int kMaxTries = 100;

/// As much of a name as is at home in any folder together with an end; no character of UTF-8 is cut
/// in two.
std::string shorten(const std::string& name) {
    // Of the 255 bytes that file systems have for a name, some need half for themselves.
    constexpr std::size_t kMost = 100;
    constexpr unsigned kContinuationMask = 0xc0;
    constexpr unsigned kContinuation = 0x80;
    if (name.size() <= kMost) return name;
    std::size_t size = kMost;
    while (size > 0 &&
           (static_cast<unsigned char>(name[size]) & kContinuationMask) == kContinuation)
        --size;
    return name.substr(0, size);
}

std::string nameOf(TemporaryFile::Place place, const std::string& other) {
    static std::random_device random;
    const std::string end = fmt::format("{:08x}.part", random());
    if (place == TemporaryFile::Place::kTemporaryFolder)
        return (fs::temp_directory_path() / ("sensorfile-" + end)).string();
    const fs::path path(other);
    return (path.parent_path() / (shorten(path.filename().string()) + "." + end)).string();
}

}  // namespace

TemporaryFile::TemporaryFile(Place place, const std::string& other) {
    const bool isPrivate = place == Place::kTemporaryFolder;
    std::error_code error;
    for (int i = 0; i < kMaxTries; ++i) {
        path_ = nameOf(place, other);
        Platform::removeOnInterrupt(path_);
        error = Platform::createFile(path_, isPrivate);
        if (!error) return;
        Platform::keepOnInterrupt(path_);
        if (error != std::errc::file_exists) break;
    }
    throw Poco::CreateFileException((isPrivate ? path_ : other) + ": " + error.message());
}

TemporaryFile::~TemporaryFile() {
    if (isReleased_) return;
    std::error_code ignored;  // nobody is left to be told
    fs::remove(path_, ignored);
    Platform::keepOnInterrupt(path_);
}

void TemporaryFile::release() {
    Platform::keepOnInterrupt(path_);
    isReleased_ = true;
}

}  // namespace SensorFileTool
