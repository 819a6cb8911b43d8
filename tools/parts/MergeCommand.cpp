#include "tools/parts/MergeCommand.hpp"

#include "text/VisibleText.hpp"
#include "tools/common/ExitCode.hpp"
#include "tools/common/InputOptions.hpp"
#include "tools/common/Json.hpp"
#include "tools/common/OutputFile.hpp"
#include "tools/common/Progress.hpp"
#include "tools/parts/ConfigDifference.hpp"
#include "tools/parts/CounterCheck.hpp"
#include "tools/parts/RecordingCopy.hpp"
#include "tools/recording/RecordingInfo.hpp"

#include <ostream>

#include <CLI/App.hpp>
#include <Poco/Exception.h>
#include <fmt/format.h>

namespace SensorFileTool {

namespace {

struct Part {
    std::string name;
    std::uint64_t rows = 0;
    Rest rest;
};

class MergeCommand : public Command {
 public:
    void define(CLI::App& app) override {
        app.add_option("IN", inPaths_, "The parts in their order; - for the standard input")
            ->required();
        app.add_option("-o,--output", outPath_, "The new file, or - for the standard output")
            ->required();
        input_.define(app);
        app.add_option("--counter", counter_,
                       "The column that counts rows; by its name if not given")
            ->type_name("NAME");
        app.add_flag("--keep-first", isFirstKept_,
                     "Take frequency and calibration of the first part where others differ");
        app.add_flag("--json", isJson_, "Report as a JSON object");
        defineForce(app, isForced_);
    }

    int run(Console& console) override {
        OutputFile output(console, outPath_, isForced_);
        Recording first(openInput(console, inPaths_.front()), input_.getEncoding());
        requireRows(first);
        for (const CounterColumn& counter : chooseCounterColumns(first.getConfig(), counter_))
            checks_.emplace_back(counter);
        output.fill([&](const std::string& path) { writeParts(console, first, path); });
        std::ostream& report = outPath_ == "-" ? console.errors : console.output;
        report << (isJson_ ? reportAsJson() : reportAsText());
        return isWhole() ? kExitDone : kExitProblems;
    }

 private:
    void writeParts(const Console& console, Recording& first, const std::string& path) {
        RecordingCopy copy(path, first.getConfig(), first.isBinary());
        appendPart(console, first, copy);
        for (std::size_t i = 1; i < inPaths_.size(); ++i) {
            Recording next(openInput(console, inPaths_[i]), input_.getEncoding());
            requireSame(first, next);
            appendPart(console, next, copy);
        }
        copy.finish();
    }

    void requireSame(const Recording& first, const Recording& next) const {
        const std::string columns = findColumnDifference(next.getConfig(), first.getConfig());
        if (!columns.empty())
            throw Poco::DataException(fmt::format("{}: other columns than in {}: {}",
                                                  next.getName(), first.getName(), columns));
        if (isFirstKept_) return;
        const std::string setup = findSetupDifference(next.getConfig(), first.getConfig());
        if (!setup.empty())
            throw Poco::DataException(
                fmt::format("{}: not as in {}: {}; --keep-first merges all "
                            "the same",
                            next.getName(), first.getName(), setup));
    }

    void appendPart(const Console& console, Recording& source, RecordingCopy& copy) {
        Progress progress(console, source.getName(), static_cast<std::uint64_t>(source.getSize()));
        Part part{source.getName(), copy.append(source, {}), findRest(source)};
        source.getReader().rewind();
        RowReader rows(source);
        for (std::uint64_t row = 0; !checks_.empty() && rows.next(); ++row) {
            for (CounterCheck& check : checks_)
                check.see(rows.row(), parts_.size(), row);
            progress.show(static_cast<std::uint64_t>(source.getReader().position()));
        }
        parts_.push_back(part);
    }

    [[nodiscard]] bool isWhole() const {
        for (const Part& part : parts_)
            if (part.rest.size > 0) return false;
        for (const CounterCheck& check : checks_)
            if (!check.isWhole()) return false;
        return true;
    }

    [[nodiscard]] std::uint64_t countAll() const {
        std::uint64_t rows = 0;
        for (const Part& part : parts_)
            rows += part.rows;
        return rows;
    }

    static std::string describe(const CounterColumn::Step& step) {
        if (step.isRepeated) return "the count is repeated";
        if (step.isBackward) return "the count goes back";
        return fmt::format("{} row(s) are missing", step.missing);
    }

    [[nodiscard]] std::string describe(const CounterCheck& check) const {
        const std::string name = Texts::toVisible(check.getCounter().name);
        if (check.isWhole()) return fmt::format("{}: no row is missing\n", name);
        std::string text = fmt::format("{}: {} row(s) are missing, {} place(s)\n", name,
                                       check.getMissing(), check.getGapCount());
        for (const CounterCheck::Gap& gap : check.getGaps())
            text +=
                fmt::format("  {} row {}: {} before it\n", Texts::toVisible(parts_[gap.part].name),
                            gap.row, describe(gap.step));
        if (check.getGapCount() > check.getGaps().size()) text += "  ...\n";
        return text;
    }

    [[nodiscard]] std::string reportAsText() const {
        std::string text;
        for (const Part& part : parts_) {
            text += fmt::format("{}: {} row(s)\n", Texts::toVisible(part.name), part.rows);
            if (part.rest.size > 0) text += "  left out: " + part.rest.describe() + '\n';
        }
        text += fmt::format("{}: {} row(s)\n", Texts::toVisible(outPath_), countAll());
        if (checks_.empty())
            text += "whether rows are missing between the parts, no column tells\n";
        for (const CounterCheck& check : checks_)
            text += describe(check);
        return text;
    }

    [[nodiscard]] std::string reportAsJson() const {
        Json parts = Json::array();
        for (const Part& part : parts_)
            parts.push_back({{"path", part.name},
                             {"rows", jsonInteger(part.rows)},
                             {"trailing_bytes", part.rest.size}});
        Json counters = Json::array();
        for (const CounterCheck& check : checks_) {
            Json gaps = Json::array();
            for (const CounterCheck::Gap& gap : check.getGaps())
                gaps.push_back({{"path", parts_[gap.part].name},
                                {"row", jsonInteger(gap.row)},
                                {"missing_rows", jsonInteger(gap.step.missing)},
                                {"is_repeated", gap.step.isRepeated},
                                {"is_backward", gap.step.isBackward}});
            counters.push_back({{"column", check.getCounter().name},
                                {"missing_rows", jsonInteger(check.getMissing())},
                                {"gap_count", jsonInteger(check.getGapCount())},
                                {"gaps", gaps}});
        }
        return jsonLine({{"schema", "sensorfile-merge-1"},
                         {"path", outPath_},
                         {"rows", jsonInteger(countAll())},
                         {"is_whole", isWhole()},
                         {"parts", parts},
                         {"counters", counters}});
    }

    InputOptions input_;
    std::vector<std::string> inPaths_;
    std::string outPath_;
    std::string counter_;
    bool isFirstKept_ = false;
    bool isJson_ = false;
    bool isForced_ = false;
    std::vector<CounterCheck> checks_;
    std::vector<Part> parts_;
};

}  // namespace

std::unique_ptr<Command> makeMergeCommand() {
    return std::make_unique<MergeCommand>();
}

}  // namespace SensorFileTool
