#include "tools/check/RecoverCommand.hpp"

#include "tools/check/RecoverReport.hpp"
#include "tools/check/Recovery.hpp"
#include "tools/common/ExitCode.hpp"
#include "tools/common/InputOptions.hpp"
#include "tools/common/OutputFile.hpp"
#include "tools/common/UsageException.hpp"

#include <filesystem>
#include <ostream>
#include <system_error>

#include <CLI/App.hpp>
#include <Poco/Exception.h>

namespace SensorFileTool {

namespace {

class RecoverCommand : public Command {
 public:
    void define(CLI::App& app) override {
        app.add_option("IN", inPath_, "The damaged file, or - for the standard input")->required();
        app.add_option("OUT", outPath_, "The new file, or - for the standard output")->required();
        input_.define(app);
        app.add_option("--counter", options_.check.counter,
                       "The column that counts rows; otherwise columns named COUNT, FRAME and the "
                       "like")
            ->type_name("COLUMN");
        app.add_option("--time", options_.check.time,
                       "The column of time stamps; otherwise one named TIME, STAMP and the like")
            ->type_name("COLUMN");
        auto* const drop = app.add_flag("--drop-zeros", isZerosDropped_,
                                        "Drop rows of zeros at the end, also when no counter or "
                                        "time stamp shows that they were not recorded");
        app.add_flag("--keep-zeros", areZerosKept_, "Keep them in any case")->excludes(drop);
        app.add_flag("--json", isJson_, "Report as a JSON object");
        defineForce(app, isForced_);
    }

    int run(Console& console) override {
        requireOtherFile();
        options_.check.encoding = input_.getEncoding();
        if (isZerosDropped_) options_.zeroRows = ZeroRows::kDrop;
        if (areZerosKept_) options_.zeroRows = ZeroRows::kKeep;
        const InputFile input = openInput(console, inPath_);
        OutputFile output(console, outPath_, isForced_);
        const Recovery recovery = recoverInto(console, input, output);
        output.commit();
        std::ostream& report = outPath_ == "-" ? console.errors : console.output;
        report << (isJson_ ? recoveryToJson(recovery) : recoveryToText(console, recovery));
        return recovery.isWhole ? kExitDone : kExitProblems;
    }

 private:
    void requireOtherFile() const {
        std::error_code error;
        if (inPath_ != "-" && outPath_ != "-" &&
            std::filesystem::equivalent(inPath_, outPath_, error))
            throw UsageException("OUT: " + outPath_ +
                                 " is the damaged file itself, which is never changed");
    }

    [[nodiscard]] Recovery recoverInto(const Console& console, const InputFile& input,
                                       const OutputFile& output) const {
        try {
            return recoverFile(console, input, output.getPath(), output.getName(), options_);
        } catch (const Poco::FileException& error) {
            throw Poco::FileException(output.withName(error.message()));
        }
    }

    InputOptions input_;
    RecoverOptions options_;
    std::string inPath_;
    std::string outPath_;
    bool isZerosDropped_ = false;
    bool areZerosKept_ = false;
    bool isJson_ = false;
    bool isForced_ = false;
};

}  // namespace

std::unique_ptr<Command> makeRecoverCommand() {
    return std::make_unique<RecoverCommand>();
}

}  // namespace SensorFileTool
