#include "tools/convert/ConvertCommand.hpp"

#include "tools/common/ExitCode.hpp"
#include "tools/common/InputOptions.hpp"
#include "tools/common/UsageException.hpp"
#include "tools/convert/Conversion.hpp"
#include "tools/convert/OutputFormat.hpp"
#include "tools/recording/RowRange.hpp"

#include <CLI/App.hpp>

namespace SensorFileTool {

namespace {

// What a text file can have: a double has no more decimals.
constexpr int kMaxDecimals = 1074;

class ConvertCommand : public Command {
 public:
    void define(CLI::App& app) override {
        app.add_option("IN", in_, "A sensor file, or - for the standard input")->required();
        app.add_option("OUT", out_, "The file to make, or - for the standard output")->required();
        input_.define(app);
        app.add_option("--to", to_,
                       "What to make; without it by OUT's ending: .txt, .csv, .tsv, .jsonl, .npy, "
                       ".h5, .mat; any other is binary")
            ->type_name("FORMAT")
            ->check(CLI::IsMember(listOutputFormats()));
        app.add_option("--rows", rows_, "Rows to take, counted from 0; the last is not taken")
            ->type_name("FIRST:LAST");
        app.add_option("--columns", request_.columns,
                       "Columns to take, in this order; * and ? stand for any characters")
            ->type_name("NAME,...");
        app.add_option("--type", request_.types,
                       "Change the types of columns; a value beyond its new type is an error")
            ->type_name("COL=TYPE,...");
        app.add_option("--precision", precision_,
                       "Decimals of floating point numbers in a text sensor file (5)")
            ->type_name("N")
            ->check(CLI::Range(0, kMaxDecimals));
        app.add_flag("--calibrated", request_.isCalibrated,
                     "Apply the calibration records: Gain * (raw - Offset)");
        app.add_flag("--lossless", request_.isLossless, "Make nothing if a value would change");
        defineForce(app, request_.isForced);
        rowsOption_ = app.get_option("--rows");
        columnsOption_ = app.get_option("--columns");
        precisionOption_ = app.get_option("--precision");
    }

    int run(Console& console) override {
        request_.format = chooseOutputFormat(to_, out_);
        request_.out = out_;
        if (rowsOption_->count() > 0) request_.rows = parseRowRange(rows_);
        request_.hasRows = rowsOption_->count() > 0;
        if (columnsOption_->count() > 0 && request_.columns.empty())
            throw UsageException("--columns: no column is named");
        if (precisionOption_->count() > 0) {
            if (request_.format != OutputFormat::kText)
                throw UsageException("--precision: only text sensor files have fixed decimals");
            request_.precision = precision_;
        }
        Recording recording(openInput(console, in_), input_.getEncoding());
        return Conversion(console, recording, request_).run();
    }

 private:
    InputOptions input_;
    std::string in_;
    std::string out_;
    std::string to_;
    std::string rows_;
    int precision_ = 0;
    ConversionRequest request_;
    const CLI::Option* rowsOption_ = nullptr;
    const CLI::Option* columnsOption_ = nullptr;
    const CLI::Option* precisionOption_ = nullptr;
};

}  // namespace

std::unique_ptr<Command> makeConvertCommand() {
    return std::make_unique<ConvertCommand>();
}

}  // namespace SensorFileTool
