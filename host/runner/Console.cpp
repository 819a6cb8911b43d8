#include "host/runner/Console.hpp"

#include "text/VisibleText.hpp"

#include <ostream>
#include <string_view>

namespace Quoril::Runner {

namespace {
// Back to the first column, and away with what stands there.
constexpr const char* kEraseLine = "\r\x1b[K";
}  // namespace

void Console::error(const std::string& line) {
    const std::string_view end = line.ends_with('\n') ? "\n" : "";
    const std::lock_guard lock(mutex_);
    write(Texts::toVisible(std::string_view(line).substr(0, line.size() - end.size())));
}

void Console::info(const std::string& line) {
    if (verbosity_ != Verbosity::kQuiet) error(line);
}

void Console::detail(const std::string& line) {
    if (verbosity_ == Verbosity::kVerbose) error(line);
}

void Console::errorLines(const std::string& lines) {
    const std::lock_guard lock(mutex_);
    write(Texts::toVisibleLines(lines));
}

void Console::infoLines(const std::string& lines) {
    if (verbosity_ != Verbosity::kQuiet) errorLines(lines);
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
