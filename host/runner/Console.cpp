#include "host/runner/Console.hpp"

#include <ostream>

namespace Quoril::Runner {

namespace {
// Back to the first column, and away with what stands there.
constexpr const char* kEraseLine = "\r\x1b[K";
}  // namespace

void Console::error(const std::string& line) {
    const std::lock_guard lock(mutex_);
    write(line);
}

void Console::info(const std::string& line) {
    if (verbosity_ != Verbosity::kQuiet) error(line);
}

void Console::detail(const std::string& line) {
    if (verbosity_ == Verbosity::kVerbose) error(line);
}

void Console::progress(const std::string& line) {
    const std::lock_guard lock(mutex_);
    if (!isTerminal_) {
        stream_ << line << std::endl;
        return;
    }
    progress_ = line;
    stream_ << kEraseLine << progress_ << std::flush;
}

void Console::endProgress() {
    const std::lock_guard lock(mutex_);
    if (progress_.empty()) return;
    progress_.clear();
    stream_ << std::endl;
}

void Console::write(const std::string& line) {
    if (!progress_.empty()) stream_ << kEraseLine;
    stream_ << line;
    if (line.empty() || line.back() != '\n') stream_ << '\n';
    stream_ << progress_ << std::flush;
}

}  // namespace Quoril::Runner
