#include "tools/check/CheckCommand.hpp"

#include "tools/check/CheckReportText.hpp"
#include "tools/check/FileCheck.hpp"
#include "tools/common/ErrorText.hpp"
#include "tools/common/ExitCode.hpp"
#include "tools/common/InputOptions.hpp"
#include "tools/common/OutputCheck.hpp"
#include "tools/common/UsageException.hpp"

#include <ostream>

#include <CLI/App.hpp>
#include <Poco/Exception.h>

namespace SensorFileTool {

namespace {

class CheckCommand : public Command {
 public:
    void define(CLI::App& app) override {
        app.add_option("FILE", paths_,
                       "Sensor files, or Kivra2 calibration files; - for the standard input")
            ->required();
        input_.define(app);
        input_.defineKind(app);
        app.add_option("--counter", options_.counter,
                       "The column that counts rows; otherwise columns named COUNT, FRAME and the "
                       "like")
            ->type_name("COLUMN");
        app.add_option("--time", options_.time,
                       "The column of time stamps; otherwise one named TIME, STAMP and the like")
            ->type_name("COLUMN");
        app.add_option("--time-unit", options_.timeUnit, "Unit of the time stamps")
            ->type_name("s|ms|us|ns");
        auto* const all =
            app.add_flag("--all", isAll_, "Show all defects, not the first ones of each code");
        app.add_option("--max", options_.maxPerCode, "Show so many defects of each code")
            ->type_name("N")
            ->check(CLI::NonNegativeNumber)
            ->excludes(all);
        app.add_flag("--strict", isStrict_, "Notes count as problems, too");
        app.add_flag("--json", isJson_, "Write a JSON object a line for each file");
    }

    int run(Console& console) override {
        options_.encoding = input_.getEncoding();
        if (isAll_) options_.maxPerCode = DefectList::kMaxKept;
        int code = kExitDone;
        for (const std::string& path : paths_) {
            try {
                code = worseOf(code, checkOne(console, path));
            } catch (const UsageException&) {
                throw;
            } catch (const Poco::Exception& error) {
                tellError(console, describeError(error));
                code = kExitFailed;
            }
            requireGood(console.output);
        }
        return code;
    }

 private:
    int checkOne(Console& console, const std::string& path) {
        const InputFile input = openInput(console, path);
        CheckOptions options = options_;
        options.isKivra2Calib = input_.isKivra2Calib(input);
        const CheckReport report = checkFile(console, input, options);
        console.output << (isJson_ ? checkReportToJson(report)
                                   : checkReportToText(console, report));
        const DefectList& defects = report.defects;
        const bool hasProblems = defects.count(Severity::kError) != 0 ||
                                 defects.count(Severity::kWarning) != 0 ||
                                 (isStrict_ && defects.count(Severity::kNote) != 0);
        return hasProblems ? kExitProblems : kExitDone;
    }

    InputOptions input_;
    CheckOptions options_;
    std::vector<std::string> paths_;
    bool isAll_ = false;
    bool isStrict_ = false;
    bool isJson_ = false;
};

}  // namespace

std::unique_ptr<Command> makeCheckCommand() {
    return std::make_unique<CheckCommand>();
}

}  // namespace SensorFileTool
