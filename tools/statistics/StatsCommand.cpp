#include "tools/statistics/StatsCommand.hpp"

#include "tools/common/ExitCode.hpp"
#include "tools/common/InputOptions.hpp"
#include "tools/common/UsageException.hpp"
#include "tools/recording/ColumnChoice.hpp"
#include "tools/recording/RecordingInfo.hpp"
#include "tools/statistics/StatsAnalysis.hpp"

#include <cmath>
#include <ostream>

#include <CLI/App.hpp>
#include <fmt/format.h>

namespace SensorFileTool {

namespace {

// Each takes a few hundred kilobytes.
constexpr std::size_t kMostAllan = 100;

std::string refuseNothing(const std::string& text) {
    return text.empty() ? "no column is named" : std::string();
}

class StatsCommand : public Command {
 public:
    void define(CLI::App& app) override {
        app.add_option("FILE", path_, "A recording, or - for the standard input")->required();
        input_.define(app);
        app.add_option("--columns", columns_, "Columns to sum up; * and ? stand for any characters")
            ->type_name("NAME,...")
            ->check(&refuseNothing);
        rowsOption_ =
            app.add_option("--rows", rows_, "Rows to sum up, counted from 0; the last is left out")
                ->type_name("FIRST:LAST");
        app.add_flag("--calibrated", isCalibrated_, "Apply the calibration records, as cat does");
        app.add_option("--allan", allan_,
                       "Columns whose Allan deviation is told; may be given more than once")
            ->type_name("NAME,...")
            ->check(&refuseNothing)
            ->allow_extra_args(false);
        rateOption_ =
            app.add_option("--rate", rate_, "Rows per second for --allan; the header's otherwise")
                ->type_name("HZ");
        app.add_flag("--json", isJson_, "Write a JSON object");
    }

    int run(Console& console) override {
        const RowRange range = rowsOption_->count() > 0 ? parseRowRange(rows_) : RowRange{};
        if (rateOption_->count() > 0) requireRate(rate_, "--rate: ");
        Recording recording(openInput(console, path_), input_.getEncoding());
        requireRows(recording);
        std::optional<Calibration> calibration;
        if (isCalibrated_) calibration.emplace(recording.getConfig());
        const StatsSources sources =
            findSources(calibration ? calibration->getConfig() : recording.getConfig(), range);
        Progress progress(console, recording.getName(),
                          static_cast<std::uint64_t>(recording.getSize()));
        const StatsReport report = analyzeRows(recording, sources, calibration, progress);
        progress.clear();
        console.output << (isJson_ ? statsToJson(report) : statsToText(report));
        const Rest rest = report.isToTheEnd ? findRest(recording) : Rest{};
        if (rest.size == 0) return kExitDone;
        tellError(console, report.path + ": " + rest.describe());
        return kExitProblems;
    }

 private:
    static void requireRate(double rate, const char* where) {
        if (!(rate > 0.0) || !std::isfinite(rate))
            throw UsageException(std::string(where) + "a number above 0 is needed");
    }

    [[nodiscard]] StatsSources findSources(const SensorFile::SensorFileConfig& config,
                                           const RowRange& range) const {
        StatsSources sources{range, chooseColumns(config, columns_), {}, rate_};
        if (allan_.empty()) return sources;
        std::string patterns;
        for (const std::string& one : allan_)
            patterns += (patterns.empty() ? "" : ",") + one;
        sources.allan = chooseColumns(config, patterns, "--allan");
        if (sources.allan.size() > kMostAllan)
            throw UsageException(fmt::format("--allan: {} columns are named, {} is the most",
                                             sources.allan.size(), kMostAllan));
        if (rateOption_->count() == 0) sources.rate = config.getSampleFrequency();
        requireRate(sources.rate, "--allan: the header has no frequency; give --rate: ");
        return sources;
    }

    InputOptions input_;
    std::string path_;
    std::string columns_;
    std::string rows_;
    std::vector<std::string> allan_;
    double rate_ = 0.0;
    bool isCalibrated_ = false;
    bool isJson_ = false;
    const CLI::Option* rowsOption_ = nullptr;
    const CLI::Option* rateOption_ = nullptr;
};

}  // namespace

std::unique_ptr<Command> makeStatsCommand() {
    return std::make_unique<StatsCommand>();
}

}  // namespace SensorFileTool
