#include "tools/plot/PlotCommand.hpp"

#include "tools/common/ExitCode.hpp"
#include "tools/common/InputOptions.hpp"
#include "tools/common/OutputFile.hpp"
#include "tools/plot/PlotPage.hpp"
#include "tools/plot/PlotRows.hpp"
#include "tools/recording/ColumnChoice.hpp"
#include "tools/recording/RecordingInfo.hpp"

#include <algorithm>
#include <cerrno>
#include <filesystem>
#include <fstream>
#include <utility>

#include <CLI/App.hpp>
#include <Poco/Exception.h>

namespace SensorFileTool {

namespace {

// Twice that many points are more than a screen is wide.
constexpr std::uint64_t kBuckets = 4000;
constexpr std::uint64_t kMinBuckets = 10;
constexpr std::uint64_t kMaxBuckets = 100000;
// Numbers in a page, of about six bytes each, unless the user asks for more.
constexpr std::uint64_t kMaxNumbers = 600000;
// From a level to the next finer one.
constexpr std::uint64_t kZoom = 4;
constexpr std::uint64_t kReadings = 2;

/// Buckets of the levels, from the coarsest on, as far as there is room for finer ones.
std::vector<std::uint64_t> planLevels(std::uint64_t buckets, std::uint64_t rows,
                                      std::size_t columns) {
    const std::uint64_t lists = columns + 1;
    std::vector<std::uint64_t> plan = {buckets};
    std::uint64_t numbers = PlotLevel::countPoints(rows, buckets) * lists;
    while (PlotLevel::countPoints(rows, plan.back()) < rows) {
        const std::uint64_t next = plan.back() * kZoom;
        numbers += PlotLevel::countPoints(rows, next) * lists;
        if (numbers > kMaxNumbers) break;
        plan.push_back(next);
    }
    return plan;
}

/// Reads the rows into the finest level.
PlotLevel readLevel(PlotRows& rows, const PlotScan& scan, const std::vector<std::size_t>& columns,
                    std::uint64_t buckets) {
    PlotLevel level(columns.size(), scan.rows, buckets);
    std::vector<double> values(columns.size());
    auto gap = scan.gaps.begin();
    for (std::uint64_t index = 0; index < scan.rows && rows.next(); ++index) {
        if (gap != scan.gaps.end() && gap->row == index) {
            level.addGap((gap->start + gap->end) / 2);
            ++gap;
        }
        for (std::size_t i = 0; i < columns.size(); ++i)
            values[i] = rows.row().getValue(columns[i]);
        level.add(index, scan.axis.positionOf(rows.row(), rows.getNumber()), values);
    }
    level.finish();
    return level;
}

class PlotCommand : public Command {
 public:
    explicit PlotCommand(const PlotAssets* assets) : assets_(assets) {}

    void define(CLI::App& app) override {
        app.add_option("FILE", path_, "A recording, or - for the standard input")->required();
        app.add_option("-o,--output", target_,
                       "The page, or - for the standard output; FILE's name with .html if not "
                       "given, the standard output for the standard input")
            ->type_name("OUT.html");
        defineForce(app, isForced_);
        app.add_option("--columns", columns_,
                       "Columns to show; * and ? stand for any characters. All but the time "
                       "stamps if not given")
            ->type_name("NAME,...");
        rowsOption_ =
            app.add_option("--rows", rows_, "Rows to show, counted from 0; the last is not shown")
                ->type_name("FIRST:LAST");
        app.add_flag("--calibrated", isCalibrated_,
                     "Apply the calibration records: Gain * (raw - Offset)");
        app.add_option("--time", time_, "The column of time stamps, if its name does not tell")
            ->type_name("COLUMN");
        app.add_option("--time-unit", unit_, "The unit of the time stamps")
            ->type_name("s|ms|us|ns")
            ->check(CLI::IsMember({"s", "ms", "us", "ns"}));
        app.add_option("--counter", counter_,
                       "The column that counts rows, if its name does not tell")
            ->type_name("COLUMN");
        app.add_option("--points", buckets_,
                       "Steps of the time axis, of each of which the smallest and the largest "
                       "value are shown (4000, less for many columns); more when zoomed in, as "
                       "far as a page of a few MB has room")
            ->type_name("N")
            ->check(CLI::Range(kMinBuckets, kMaxBuckets).description(""));
        app.add_option("--title", title_, "The page's title; the file's name if not given")
            ->type_name("TEXT");
        input_.define(app);
    }

    int run(Console& console) override {
        if (assets_ == nullptr)
            throw Poco::NotImplementedException(
                "this sensorfile was built without uPlot, so it cannot plot");
        const RowRange range = rowsOption_->count() > 0 ? parseRowRange(rows_) : RowRange{};
        Recording recording(openInput(console, path_), input_.getEncoding());
        if (recording.getConfig().isCalibOnly())
            throw Poco::DataException(recording.getName() +
                                      ": a file of calibrations, which has no rows");
        OutputFile output(console, findTarget(), isForced_);
        Progress progress(console, recording.getName(),
                          kReadings * static_cast<std::uint64_t>(recording.getSize()));
        PlotRows rows(recording, range, isCalibrated_, progress);
        writePage(makePlot(rows), output);
        progress.clear();
        output.commit();
        return rows.isAtEnd() ? tellRest(console, recording) : kExitDone;
    }

 private:
    [[nodiscard]] std::string findTarget() const {
        if (!target_.empty()) return target_;
        if (path_ == "-") return path_;
        return std::filesystem::path(path_).replace_extension(".html").string();
    }

    Plot makePlot(PlotRows& rows) {
        const SensorFile::SensorFileConfig& config = rows.getConfig();
        PlotClues clues;
        clues.time = chooseTimeColumn(config, time_, unit_);
        const std::vector<CounterColumn> counters = chooseCounterColumns(config, counter_);
        if (!counters.empty()) clues.counter = counters.front();
        Plot plot;
        plot.config = &config;
        plot.isCalibrated = isCalibrated_;
        plot.fileName =
            path_ == "-" ? "standard input" : std::filesystem::path(path_).filename().string();
        plot.title = title_.empty() ? plot.fileName : title_;
        plot.columns = listColumns(config, clues.time);
        plot.panels = groupColumns(config, plot.columns);
        plot.scan = scanRows(rows, clues);
        addLevels(plot, rows);
        return plot;
    }

    /// Stamps that are the axis already need no panel, unless they are asked for.
    [[nodiscard]] std::vector<std::size_t> listColumns(
        const SensorFile::SensorFileConfig& config, const std::optional<TimeColumn>& time) const {
        std::vector<std::size_t> columns = chooseColumns(config, columns_);
        if (columns_.empty() && time && columns.size() > 1) std::erase(columns, time->index);
        return columns;
    }

    void addLevels(Plot& plot, PlotRows& rows) const {
        const std::size_t columns = plot.columns.size();
        const std::uint64_t room = kMaxNumbers / (2 * (columns + 1));
        const std::uint64_t buckets =
            buckets_ > 0 ? buckets_ : std::clamp(room, kMinBuckets, kBuckets);
        std::vector<std::uint64_t> plan = planLevels(buckets, plot.scan.rows, columns);
        rows.restart();
        plot.levels.push_back(readLevel(rows, plot.scan, plot.columns, plan.back()));
        for (plan.pop_back(); !plan.empty(); plan.pop_back())
            plot.levels.insert(plot.levels.begin(), plot.levels.front().coarsen(plan.back()));
    }

    void writePage(const Plot& plot, const OutputFile& output) const {
        std::ofstream stream(output.getPath(), std::ios::binary);
        writePlotPage(plot, *assets_, stream);
        stream.close();
        if (!stream) throw Poco::WriteFileException(output.getName(), errno);
    }

    static int tellRest(Console& console, Recording& recording) {
        const Rest rest = findRest(recording);
        if (rest.size == 0) return kExitDone;
        tellError(console, recording.getName() + ": " + rest.describe());
        return kExitProblems;
    }

    const PlotAssets* assets_;
    InputOptions input_;
    std::string path_;
    std::string target_;
    std::string columns_;
    std::string rows_;
    std::string time_;
    std::string unit_;
    std::string counter_;
    std::string title_;
    std::uint64_t buckets_ = 0;
    bool isCalibrated_ = false;
    bool isForced_ = false;
    const CLI::Option* rowsOption_ = nullptr;
};

}  // namespace

std::unique_ptr<Command> makePlotCommand() {
    return makePlotCommand(findPlotAssets());
}

std::unique_ptr<Command> makePlotCommand(const PlotAssets* assets) {
    return std::make_unique<PlotCommand>(assets);
}

}  // namespace SensorFileTool
