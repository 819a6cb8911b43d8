#pragma once

#include <iosfwd>
#include <mutex>
#include <string>

namespace Quoril::Runner {

enum class Verbosity { kQuiet, kNormal, kVerbose };

/// Where the program talks: lines for people on the error stream, with a progress line below them
/// that is rewritten in place. Any thread may call.
class Console {
 public:
    /// @param isTerminal  the stream can rewrite its last line; else progress comes in lines
    Console(std::ostream& stream, bool isTerminal) : stream_(stream), isTerminal_(isTerminal) {}

    void setVerbosity(Verbosity verbosity) noexcept { verbosity_ = verbosity; }
    [[nodiscard]] bool getIsTerminal() const noexcept { return isTerminal_; }

    /// Always written, with or without an end of line at its end. Whatever else would end the line
    /// or steer the terminal is shown as a number.
    void error(const std::string& line);
    /// Left out when quiet.
    void info(const std::string& line);
    /// Only written when verbose.
    void detail(const std::string& line);
    /// Several lines: as error() and info(), but ends of lines stay.
    void errorLines(const std::string& lines);
    void infoLines(const std::string& lines);
    void progress(const std::string& line);
    /// Ends the progress line, so that it stays.
    void endProgress();

 private:
    void write(const std::string& line);

    std::mutex mutex_;
    std::ostream& stream_;
    const bool isTerminal_;
    Verbosity verbosity_ = Verbosity::kNormal;
    std::string progress_;
};

}  // namespace Quoril::Runner
