#include "tools/calib/CalibCommand.hpp"

#include "tools/calib/CalibCompare.hpp"
#include "tools/common/ErrorText.hpp"
#include "tools/common/ExitCode.hpp"
#include "tools/common/InputOptions.hpp"
#include "tools/common/Json.hpp"
#include "tools/common/OutputFile.hpp"
#include "tools/common/UsageException.hpp"
#include "tools/info/InfoJson.hpp"
#include "tools/info/InfoText.hpp"
#include "tools/parts/RecordingCopy.hpp"
#include "tools/recording/CalibSource.hpp"
#include "tools/recording/RecordingInfo.hpp"

#include <fstream>
#include <ostream>

#include <CLI/App.hpp>
#include <Poco/Exception.h>
#include <fmt/format.h>

namespace SensorFileTool {

namespace {

/// As diff(1): trouble is 2, so that 1 says that there is a difference and nothing else.
constexpr int kExitDifferent = 1;
constexpr int kExitTrouble = 2;

/// A matrix as lines of numbers with commas, which import takes.
void writeMatrix(const std::string& path, const Eigen::MatrixXd& matrix) {
    std::ofstream file(path, std::ios::binary);
    for (Eigen::Index row = 0; row < matrix.rows(); ++row)
        for (Eigen::Index col = 0; col < matrix.cols(); ++col)
            file << fmt::format("{}{}", matrix(row, col), col + 1 < matrix.cols() ? ',' : '\n');
    file.close();
    if (!file) throw Poco::WriteFileException(path);
}

class CalibCommand : public Command {
 public:
    void define(CLI::App& app) override {
        app.require_subcommand(0, 1);
        app.add_option("FILE", path_, "What to show: a sensor file or a Kivra2 calibration file");
        app.add_flag("--json", isJson_, "Show it as a JSON object");
        input_.define(app);
        input_.defineKind(app);
        defineExtract(*app.add_subcommand(
            "extract", "Write the records of a file into one of calibrations alone"));
        defineInsert(*app.add_subcommand("insert", "Write a recording anew with other records"));
        defineCompare(*app.add_subcommand("compare", "Compare the records of two files"));
        app.footer("compare returns 0 for the same records, 1 for others, 2 for trouble.");
    }

    int run(Console& console) override {
        if (extract_->parsed()) return extract(console);
        if (insert_->parsed()) return insert(console);
        if (compare_->parsed()) return compare(console);
        if (path_.empty()) throw UsageException("FILE: name a file to show");
        return show(console);
    }

 private:
    void defineExtract(CLI::App& app) {
        extract_ = &app;
        app.add_option("IN", path_, "A sensor file or a Kivra2 calibration file")->required();
        app.add_option("OUT", outPath_, "The new file, or - for the standard output")->required();
        app.add_option("--to", target_,
                       "A sensor file of calibrations alone, a Kivra2 calibration file, or with "
                       "--record the numbers with commas; the encoding of IN if not given")
            ->type_name("text|binary|kivra2|csv")
            ->check(CLI::IsMember({"text", "binary", "kivra2", "csv"}));
        app.add_option("--record", record_, "This record alone")->type_name("NAME");
        input_.define(app);
        input_.defineKind(app);
        defineForce(app, isForced_);
    }

    void defineInsert(CLI::App& app) {
        insert_ = &app;
        app.add_option("CALIB", path_, "Where the records come from")->required();
        app.add_option("IN", inPath_, "A recording, or - for the standard input")->required();
        app.add_option("OUT", outPath_, "The new file, or - for the standard output")->required();
        app.add_flag("--keep", isKept_, "Keep records of IN that CALIB has none for");
        input_.define(app);
        input_.defineKind(app);
        defineForce(app, isForced_);
    }

    void defineCompare(CLI::App& app) {
        compare_ = &app;
        app.add_option("A", path_, "A sensor file or a Kivra2 calibration file")->required();
        app.add_option("B", inPath_, "Another one")->required();
        app.add_option("--tolerance", tolerance_, "Differences of numbers that do not count")
            ->check(CLI::NonNegativeNumber);
        input_.define(app);
        input_.defineKind(app);
        app.add_flag("--json", isJson_, "Report as a JSON object");
    }

    int show(Console& console) const {
        const CalibSource calib = loadCalib(openInput(console, path_), input_);
        const std::string name = path_ == "-" ? "standard input" : path_;
        console.output << (isJson_ ? calibToJson(name, calib) : calibToText(name, calib));
        return kExitDone;
    }

    [[nodiscard]] CalibSource loadChosen(const Console& console) const {
        CalibSource calib = loadCalib(openInput(console, path_), input_);
        if (record_.empty()) return calib;
        const CalibRecord* const found = calib.find(record_);
        if (found == nullptr) throw Poco::NotFoundException(path_ + ": no record " + record_);
        calib.records = {*found};
        return calib;
    }

    int extract(const Console& console) const {
        const CalibSource calib = loadChosen(console);
        if (calib.records.empty())
            throw Poco::DataException(path_ + ": there are no calibration records");
        if (target_ == "csv" && calib.records.size() != 1)
            throw UsageException("--to csv: one record, which --record names");
        OutputFile output(console, outPath_, isForced_);
        output.fill([&](const std::string& path) { write(calib, path); });
        return kExitDone;
    }

    void write(const CalibSource& calib, const std::string& path) const {
        if (target_ == "kivra2") {
            calib.toKivra2().save(path);
        } else if (target_ == "csv") {
            writeMatrix(path, calib.records.front().matrix);
        } else {
            SensorFile::SensorFileConfig config;
            config.setCalibOnly(true);
            calib.copyTo(config);
            const bool isBinary = target_.empty() ? calib.isBinary : target_ == "binary";
            RecordingCopy(path, config, isBinary).finish();
        }
    }

    int insert(const Console& console) const {
        CalibSource calib = loadCalib(openInput(console, path_), input_);
        Recording recording(openInput(console, inPath_));
        requireRows(recording);
        if (isKept_)
            for (const CalibRecord& old : listRecords(recording.getConfig()))
                if (calib.find(old.name) == nullptr) calib.records.push_back(old);
        SensorFile::SensorFileConfig config = recording.getConfig();
        calib.copyTo(config);
        OutputFile output(console, outPath_, isForced_);
        output.fill([&](const std::string& path) {
            RecordingCopy copy(path, config, recording.isBinary());
            copy.append(recording, {});
            copy.finish();
        });
        const Rest rest = findRest(recording);
        if (rest.size == 0) return kExitDone;
        tellError(console, recording.getName() + ": " + rest.describe());
        return kExitProblems;
    }

    int compare(const Console& console) const {
        try {
            const CalibSource one = loadCalib(openInput(console, path_), input_);
            const CalibSource other = loadCalib(openInput(console, inPath_), input_);
            const CalibDifferences found = compareCalib(one, other, tolerance_);
            console.output << (isJson_ ? differencesToJson(found) : differencesToText(found));
            return found.records.empty() ? kExitDone : kExitDifferent;
        } catch (const Poco::Exception& error) {
            tellError(console, describeError(error));
            return kExitTrouble;
        }
    }

    InputOptions input_;
    CLI::App* extract_ = nullptr;
    CLI::App* insert_ = nullptr;
    CLI::App* compare_ = nullptr;
    std::string path_;
    std::string inPath_;
    std::string outPath_;
    std::string target_;
    std::string record_;
    double tolerance_ = 0.0;
    bool isJson_ = false;
    bool isKept_ = false;
    bool isForced_ = false;
};

}  // namespace

std::unique_ptr<Command> makeCalibCommand() {
    return std::make_unique<CalibCommand>();
}

}  // namespace SensorFileTool
