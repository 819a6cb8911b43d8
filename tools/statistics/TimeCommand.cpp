#include "tools/statistics/TimeCommand.hpp"

#include "tools/common/ExitCode.hpp"
#include "tools/common/InputOptions.hpp"
#include "tools/common/UsageException.hpp"
#include "tools/statistics/TimeAnalysis.hpp"
#include "tools/statistics/TimeText.hpp"

#include <ostream>

#include <CLI/App.hpp>

namespace SensorFileTool {

namespace {

// The step over one lost row is two medians long, give or take jitter.
constexpr double kGapFactor = 1.5;

void requireColumns(const TimeSources& sources, const SensorFile::SensorFileConfig& config) {
    if (sources.time || !sources.counters.empty()) return;
    std::string list;
    for (std::size_t i = 0; i < config.getColumnCount(); ++i)
        list += (i == 0 ? "" : ", ") + config.getColumn(i).getName();
    throw UsageException(
        "no column says that it holds time or counts rows: name one with --time or --counter; "
        "there are: " +
        list);
}

std::string refuseNothing(const std::string& text) {
    return text.empty() ? "nothing is named" : std::string();
}

class TimeCommand : public Command {
 public:
    void define(CLI::App& app) override {
        app.add_option("FILE", path_, "A recording, or - for the standard input")->required();
        input_.define(app);
        app.add_option("--time", time_, "The column of time stamps; found by its name otherwise")
            ->type_name("NAME")
            ->check(&refuseNothing);
        app.add_option("--time-unit", unit_,
                       "Its unit; by its name or the header's frequency otherwise")
            ->type_name("s|ms|us|ns")
            ->check(&refuseNothing);
        app.add_option("--counter", counter_, "The column that counts; found by its name otherwise")
            ->type_name("NAME")
            ->check(&refuseNothing);
        nominalOption_ =
            app.add_option("--nominal", nominal_, "The nominal rate; the header's otherwise")
                ->type_name("HZ");
        app.add_option("--gap-factor", gapFactor_,
                       "A gap is a step longer than so many medians; 1.5 unless given")
            ->type_name("F");
        limits_.define(app);
        app.add_flag("--json", isJson_, "Write a JSON object");
        app.footer(
            "Times have a unit, as 1ms, shares too, as 0.1% or 50ppm. Exit code 3 tells that a "
            "limit is not kept, too.");
    }

    int run(Console& console) override {
        if (!(gapFactor_ > 1.0)) throw UsageException("--gap-factor: a number above 1 is needed");
        if (nominalOption_->count() > 0 && !(nominal_ > 0.0))
            throw UsageException("--nominal: a number above 0 is needed");
        Recording recording(openInput(console, path_), input_.getEncoding());
        const TimeSources sources = findSources(recording);
        limits_.parse(sources.time.has_value(), !sources.counters.empty());
        Progress progress(console, recording.getName(),
                          static_cast<std::uint64_t>(recording.getSize()));
        const TimeReport report = analyzeTime(recording, sources, progress);
        progress.clear();
        const std::vector<Violation> violations = limits_.judge(report);
        console.output << (isJson_ ? timeToJson(report, violations)
                                   : timeToText(report, violations));
        return tellProblems(console, report, violations);
    }

 private:
    [[nodiscard]] TimeSources findSources(const Recording& recording) const {
        const SensorFile::SensorFileConfig& config = recording.getConfig();
        requireRows(recording);
        TimeSources sources{
            chooseTimeColumn(config, time_, unit_), chooseCounterColumns(config, counter_),
            nominalOption_->count() > 0 ? nominal_ : config.getSampleFrequency(), gapFactor_};
        requireColumns(sources, config);
        return sources;
    }

    static int tellProblems(const Console& console, const TimeReport& report,
                            const std::vector<Violation>& violations) {
        for (const Violation& one : violations)
            tellError(console,
                      report.path + ": " + one.limit + ' ' + one.allowed + ": " + one.found);
        if (report.rest.size > 0) tellError(console, report.path + ": " + report.rest.describe());
        return violations.empty() && report.rest.size == 0 ? kExitDone : kExitProblems;
    }

    InputOptions input_;
    std::string path_;
    std::string time_;
    std::string unit_;
    std::string counter_;
    double nominal_ = 0.0;
    double gapFactor_ = kGapFactor;
    TimeLimits limits_;
    bool isJson_ = false;
    const CLI::Option* nominalOption_ = nullptr;
};

}  // namespace

std::unique_ptr<Command> makeTimeCommand() {
    return std::make_unique<TimeCommand>();
}

}  // namespace SensorFileTool
