#pragma once

#include <chrono>
#include <cstdint>
#include <deque>
#include <map>
#include <optional>
#include <string>
#include <vector>

namespace Quoril::Runner {

/// A recording in progress, as the system sees its file.
struct RecordedFile {
    std::uint64_t recording = 0;  ///< another number for each start of a recording
    std::string path;
    std::uint64_t size = 0;                  ///< bytes
    std::uint64_t fileSystem = 0;            ///< the same number for files of one file system
    std::optional<std::uint64_t> freeBytes;  ///< nothing if the system cannot tell
};

/// Sees a disk become full before it is: when the free space of a file system falls under what its
/// recordings write in a minute, at the rate of the last ten seconds. Told once; again only after
/// space was made.
class SpaceWatch {
 public:
    /// @param now  since any fixed moment, not falling
    /// @return what there is to tell, without a line end each
    std::vector<std::string> look(std::chrono::nanoseconds now,
                                  const std::vector<RecordedFile>& files);

 private:
    struct Step {
        std::chrono::nanoseconds time;
        std::uint64_t written;  ///< bytes by all recordings since the beginning
    };
    struct FileSystem {
        std::uint64_t written = 0;
        std::deque<Step> steps;
        std::optional<double> roomWhenTold;  ///< bytes for a minute, by the rate then
        std::uint64_t freeBytes = 0;
        std::vector<std::string> paths;
    };

    void note(const RecordedFile& file);
    static std::string judge(std::chrono::nanoseconds now, FileSystem& disk);

    std::map<std::uint64_t, std::uint64_t> sizes_;  ///< by recording
    std::map<std::uint64_t, FileSystem> fileSystems_;
};

}  // namespace Quoril::Runner
