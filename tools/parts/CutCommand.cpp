#include "tools/parts/CutCommand.hpp"

#include "tools/common/ExitCode.hpp"
#include "tools/common/InputOptions.hpp"
#include "tools/common/OutputFile.hpp"
#include "tools/common/UsageException.hpp"
#include "tools/parts/RecordingCopy.hpp"
#include "tools/parts/TimeRange.hpp"
#include "tools/recording/RecordingInfo.hpp"

#include <limits>

#include <CLI/App.hpp>
#include <Poco/Exception.h>
#include <fmt/format.h>

namespace SensorFileTool {

namespace {

class CutCommand : public Command {
 public:
    void define(CLI::App& app) override {
        app.add_option("IN", inPath_, "A recording, or - for the standard input")->required();
        app.add_option("OUT", outPath_, "The new file, or - for the standard output")->required();
        input_.define(app);
        CLI::Option* const rows =
            app.add_option("--rows", rows_, "Rows to keep, counted from 0; the last is not kept")
                ->type_name("FIRST:LAST");
        CLI::Option* const time =
            app.add_option("--seconds", time_, "Seconds to keep, counted from the first row on")
                ->type_name("FIRST:LAST");
        time->excludes(rows);
        app.add_option("--time", timeColumn_, "The column of time stamps; by its name if not given")
            ->type_name("NAME");
        app.add_option("--time-unit", timeUnit_, "The unit of the stamps; found out if not given")
            ->type_name("s|ms|us|ns");
        defineForce(app, isForced_);
    }

    int run(Console& console) override {
        if (rows_.empty() == time_.empty())
            throw UsageException("say which part: --rows FIRST:LAST or --seconds FIRST:LAST");
        RowRange range = rows_.empty() ? RowRange{} : parseRowRange(rows_);
        const TimeRange time = time_.empty() ? TimeRange{} : parseTimeRange(time_);
        Recording recording(openInput(console, inPath_), input_.getEncoding());
        requireRows(recording);
        if (!time_.empty())
            range = findRowsOfTime(
                recording, chooseTimeColumn(recording.getConfig(), timeColumn_, timeUnit_), time);
        OutputFile output(console, outPath_, isForced_);
        std::uint64_t count = 0;
        output.fill([&](const std::string& path) {
            RecordingCopy copy(path, recording.getConfig(), recording.isBinary());
            count = copy.append(recording, range);
            copy.finish();
        });
        return tellCut(console, recording, range, count);
    }

 private:
    /// The end of the file matters to those alone who wanted it.
    static int tellCut(const Console& console, Recording& recording, const RowRange& range,
                       std::uint64_t count) {
        const bool isEndWanted = count < range.last - range.first;
        const Rest rest = isEndWanted ? findRest(recording) : Rest{};
        if (rest.size == 0) return kExitDone;
        tellError(console, recording.getName() + ": " + rest.describe());
        return kExitProblems;
    }

    InputOptions input_;
    std::string inPath_;
    std::string outPath_;
    std::string rows_;
    std::string time_;
    std::string timeColumn_;
    std::string timeUnit_;
    bool isForced_ = false;
};

}  // namespace

std::unique_ptr<Command> makeCutCommand() {
    return std::make_unique<CutCommand>();
}

}  // namespace SensorFileTool
