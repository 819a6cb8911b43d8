#include "host/runner/SpaceWatch.hpp"

#include <fmt/format.h>

namespace Quoril::Runner {

namespace {
using std::chrono::nanoseconds;

constexpr double kLeastTime = 60.0;                         // s
constexpr nanoseconds kWindow = std::chrono::seconds(10);   // of the rate
constexpr nanoseconds kShortest = std::chrono::seconds(1);  // before anything is said of the rate
// Space was made, and is not only given back for a moment, when there is so many times more.
constexpr double kMuchMore = 2.0;

std::string sizeText(double bytes) {
    constexpr double kStep = 1024.0;
    const char* unit = "bytes";
    for (const char* larger : {"KiB", "MiB", "GiB", "TiB"}) {
        if (bytes < kStep) break;
        bytes /= kStep;
        unit = larger;
    }
    return fmt::format("{:.3g} {}", bytes, unit);
}

std::string listOf(const std::vector<std::string>& paths) {
    std::string list;
    for (const std::string& path : paths)
        list += (list.empty() ? "'" : ", '") + path + "'";
    return list;
}

double secondsOf(nanoseconds time) {
    return std::chrono::duration<double>(time).count();
}
}  // namespace

std::vector<std::string> SpaceWatch::look(nanoseconds now, const std::vector<RecordedFile>& files) {
    for (auto& [id, disk] : fileSystems_)
        disk.paths.clear();
    for (const RecordedFile& file : files)
        note(file);
    std::vector<std::string> warnings;
    for (auto& [id, disk] : fileSystems_) {
        const std::string warning = judge(now, disk);
        if (!warning.empty()) warnings.push_back(warning);
    }
    return warnings;
}

void SpaceWatch::note(const RecordedFile& file) {
    if (!file.freeBytes) return;
    FileSystem& disk = fileSystems_[file.fileSystem];
    std::uint64_t& size = sizes_[file.recording];
    if (file.size > size) disk.written += file.size - size;
    size = file.size;
    disk.freeBytes = *file.freeBytes;
    disk.paths.push_back(file.path);
}

std::string SpaceWatch::judge(nanoseconds now, FileSystem& disk) {
    if (disk.paths.empty()) {
        // A rest between recordings is no part of their rate.
        disk.steps.clear();
        return "";
    }
    disk.steps.push_back({now, disk.written});
    while (disk.steps.size() > 2 && now - disk.steps[1].time >= kWindow)
        disk.steps.pop_front();
    const auto room = static_cast<double>(disk.freeBytes);
    if (disk.roomWhenTold && room >= kMuchMore * *disk.roomWhenTold) disk.roomWhenTold.reset();
    const Step& first = disk.steps.front();
    const nanoseconds time = now - first.time;
    if (disk.roomWhenTold || time < kShortest) return "";
    const double rate = static_cast<double>(disk.written - first.written) / secondsOf(time);
    if (room >= rate * kLeastTime) return "";
    disk.roomWhenTold = rate * kLeastTime;
    return fmt::format(
        "warning: the disk of {} will be full in {:.0f} s: {} are free, {} are recorded a second",
        listOf(disk.paths), room / rate, sizeText(room), sizeText(rate));
}

}  // namespace Quoril::Runner
