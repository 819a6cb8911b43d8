#include "tools/info/CatCommand.hpp"

#include "text/VisibleText.hpp"
#include "tools/common/ExitCode.hpp"
#include "tools/common/InputOptions.hpp"
#include "tools/common/OutputCheck.hpp"
#include "tools/recording/Calibration.hpp"
#include "tools/recording/ColumnChoice.hpp"
#include "tools/recording/RecordingInfo.hpp"
#include "tools/recording/RowFormat.hpp"
#include "tools/recording/RowRange.hpp"
#include "tools/recording/RowReader.hpp"

#include <algorithm>
#include <cstdint>
#include <map>
#include <optional>
#include <ostream>

#include <CLI/App.hpp>

namespace SensorFileTool {

namespace {

// Rows are handed on in pieces of this size.
constexpr std::size_t kPieceSize = std::size_t{256} * 1024;

const std::map<std::string, RowFormat>& rowFormatsByName() {
    static const std::map<std::string, RowFormat> kRowFormats{
        {"csv", RowFormat::kCsv}, {"tsv", RowFormat::kTsv}, {"json", RowFormat::kJsonLines}};
    return kRowFormats;
}

void hand(std::string& text, std::ostream& output) {
    output.write(text.data(), static_cast<std::streamsize>(text.size()));
    requireGood(output);
    text.clear();
}

class CatCommand : public Command {
 public:
    void define(CLI::App& app) override {
        app.add_option("FILE", path_, "A recording, or - for the standard input")->required();
        input_.define(app);
        app.add_option("--rows", rows_, "Rows to write, counted from 0; the last is not written")
            ->type_name("FIRST:LAST");
        app.add_option("--columns", columns_,
                       "Columns to write, in this order; * and ? stand for any characters")
            ->type_name("NAME,...")
            ->check([](const std::string& text) {
                return text.empty() ? std::string("no column is named") : std::string();
            });
        app.add_flag("--calibrated", isCalibrated_,
                     "Apply the calibration records: Gain * (raw - Offset) for columns such as "
                     "ACCX, ACCY, ACCZ with records AccGain (3 x 3) and AccOffset (1 x 3)");
        app.add_option("--format", format_, "Commas, tabs, or a JSON object a row")
            ->type_name("csv|tsv|json")
            ->check(CLI::IsMember({"csv", "tsv", "json"}));
        app.add_flag("--no-header", hasNoHeader_, "Leave out the line of column names");
        rowsOption_ = app.get_option("--rows");
    }

    int run(Console& console) override {
        const RowRange range = rowsOption_->count() > 0 ? parseRowRange(rows_) : RowRange{};
        Recording recording(openInput(console, path_), input_.getEncoding());
        requireRows(recording);
        std::optional<Calibration> calibration;
        if (isCalibrated_) calibration.emplace(recording.getConfig());
        if (writeRows(recording, calibration, range, console)) return kExitDone;
        const Rest rest = findRest(recording);
        if (rest.size == 0) return kExitDone;
        tellError(console, recording.getName() + ": " + rest.describe());
        return kExitProblems;
    }

 private:
    /// False if the rows ended before the range did.
    bool writeRows(Recording& recording, std::optional<Calibration>& calibration,
                   const RowRange& range, const Console& console) {
        const SensorFile::SensorFileConfig& config =
            calibration ? calibration->getConfig() : recording.getConfig();
        RowText format(rowFormatsByName().at(format_), config, chooseColumns(config, columns_));
        std::string text;
        if (!hasNoHeader_) format.appendHeader(text);
        // Other programs get the names as they are.
        if (console.isTerminal) text = Texts::toVisibleLines(text);
        RowReader rows(recording);
        std::uint64_t row = skipToRow(range.first, recording, rows);
        bool areMore = true;
        for (; areMore && row < range.last; ++row) {
            areMore = rows.next();
            if (!areMore) break;
            format.appendRow(text, calibration ? calibration->apply(rows.row()) : rows.row());
            if (text.size() >= kPieceSize) hand(text, console.output);
        }
        hand(text, console.output);
        return areMore;
    }

    InputOptions input_;
    std::string path_;
    std::string rows_;
    std::string columns_;
    std::string format_ = "csv";
    bool isCalibrated_ = false;
    bool hasNoHeader_ = false;
    const CLI::Option* rowsOption_ = nullptr;
};

}  // namespace

std::unique_ptr<Command> makeCatCommand() {
    return std::make_unique<CatCommand>();
}

}  // namespace SensorFileTool
