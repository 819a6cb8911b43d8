#include "tools/diff/DiffCommand.hpp"

#include "tools/common/InputOptions.hpp"
#include "tools/common/UsageException.hpp"
#include "tools/diff/FileDifference.hpp"

#include <algorithm>
#include <iterator>
#include <limits>
#include <ostream>

#include <CLI/App.hpp>

namespace SensorFileTool {

namespace {

enum DiffCode : int { kSame = 0, kDifferent = 1, kTrouble = 2 };

void append(std::vector<PartDifference>& all, std::vector<PartDifference> more) {
    std::move(more.begin(), more.end(), std::back_inserter(all));
}

void requireLimit(const char* option, double value) {
    if (!(value >= 0.0))
        throw UsageException(std::string(option) + ": a number from 0 on is needed");
}

class DiffCommand : public Command {
 public:
    void define(CLI::App& app) override {
        app.add_option("A", pathA_, "A sensor file, or - for the standard input")->required();
        app.add_option("B", pathB_, "Another one")->required();
        input_.define(app);
        app.add_option("--tolerance", tolerance_.absolute,
                       "Numbers so far apart count as equal; 0 unless given")
            ->type_name("ABS");
        app.add_option("--relative", tolerance_.relative,
                       "So do numbers that are apart by this share of the larger one")
            ->type_name("REL");
        app.add_option("--columns", columns_,
                       "Columns to compare; * and ? stand for any characters")
            ->type_name("NAME,...")
            ->check([](const std::string& text) {
                return text.empty() ? std::string("no column is named") : std::string();
            });
        rowsOption_ = app.add_option("--rows", rows_,
                                     "Rows to compare, counted from 0; the last is not compared")
                          ->type_name("FIRST:LAST");
        app.add_flag("--dates", isWithDates_, "Compare the dates of creation and calibration");
        const CLI::Option* const json =
            app.add_flag("--json", isJson_, "Write a JSON object, also if there is no difference");
        app.add_flag("-q,--brief", isBrief_, "Tell only whether the files differ")
            ->excludes(app.get_option(json->get_name()));
        app.footer("Exit codes: 0 the same, 1 different, 2 trouble.");
    }

    int run(Console& console) override {
        const RowRange range = rowsOption_->count() > 0 ? parseRowRange(rows_) : RowRange{};
        requireLimit("--tolerance", tolerance_.absolute);
        requireLimit("--relative", tolerance_.relative);
        if (pathA_ == "-" && pathB_ == "-")
            throw UsageException("only one of the files can be the standard input");
        Recording a(openInput(console, pathA_), input_.getEncoding());
        Recording b(openInput(console, pathB_), input_.getEncoding());
        const FileDifference difference = compare(console, a, b, range);
        tell(console.output, difference);
        return difference.isSame() ? kSame : kDifferent;
    }

    [[nodiscard]] int failureCode() const override { return kTrouble; }

 private:
    FileDifference compare(const Console& console, Recording& a, Recording& b,
                           const RowRange& range) const {
        FileDifference found{a.getName(), b.getName(), tolerance_, {}, {}, {}, {}};
        const auto& configA = a.getConfig();
        const auto& configB = b.getConfig();
        const std::vector<ColumnPair> pairs = pairColumns(configA, configB, columns_);
        append(found.parts, compareHeaders(configA, configB, tolerance_, isWithDates_));
        append(found.parts, compareColumns(configA, configB, pairs));
        append(found.parts, compareCalibrations(configA, configB, tolerance_));
        if ((isBrief_ && !found.parts.empty()) || configA.isCalibOnly() || configB.isCalibOnly())
            return found;
        Progress progress(console, a.getName(), static_cast<std::uint64_t>(a.getSize()));
        found.rows = RowComparison(a, b, pairs, tolerance_, range).run(progress, isBrief_);
        const bool isToTheEnd = range.last == std::numeric_limits<std::uint64_t>::max();
        if (!isToTheEnd || (isBrief_ && !found.isSame())) return found;
        found.restA = findRest(a);
        found.restB = findRest(b);
        return found;
    }

    void tell(std::ostream& output, const FileDifference& difference) const {
        if (isJson_)
            output << differenceToJson(difference);
        else if (isBrief_ && !difference.isSame())
            output << nameBoth(difference) << " differ\n";
        else if (!difference.isSame())
            output << differenceToText(difference);
    }

    InputOptions input_;
    std::string pathA_;
    std::string pathB_;
    Tolerance tolerance_;
    std::string columns_;
    std::string rows_;
    bool isWithDates_ = false;
    bool isJson_ = false;
    bool isBrief_ = false;
    const CLI::Option* rowsOption_ = nullptr;
};

}  // namespace

std::unique_ptr<Command> makeDiffCommand() {
    return std::make_unique<DiffCommand>();
}

}  // namespace SensorFileTool
