#pragma once

#include "tools/common/Console.hpp"

#include <chrono>
#include <cstdint>
#include <string>

namespace SensorFileTool {

/// A bar on the terminal for work that takes longer than a moment; nothing elsewhere. It goes away
/// when the work is done.
class Progress {
 public:
    /// @param label  what is being done, e.g. a path
    /// @param total  amount of the whole work, in any unit
    Progress(const Console& console, const std::string& label, std::uint64_t total);
    Progress(const Progress&) = delete;
    Progress& operator=(const Progress&) = delete;
    ~Progress() { clear(); }

    /// May be called for every row: looks at the clock now and then only.
    void show(std::uint64_t done) {
        if (console_.hasProgress && ++calls_ % kCallsPerLook == 0) draw(done);
    }
    /// The same for larger pieces of work: looks at the clock each time.
    void showNow(std::uint64_t done) {
        if (console_.hasProgress) draw(done);
    }
    /// Before something else is written to the terminal.
    void clear();

 private:
    static constexpr std::uint32_t kCallsPerLook = 4096;

    void draw(std::uint64_t done);

    Console console_;
    std::string label_;
    std::uint64_t total_;
    std::uint32_t calls_ = 0;
    bool isDrawn_ = false;
    std::chrono::steady_clock::time_point nextDraw_;
};

}  // namespace SensorFileTool
