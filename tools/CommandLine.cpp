#include "tools/CommandLine.hpp"

#include "tools/CatCommand.hpp"
#include "tools/ErrorText.hpp"
#include "tools/ExitCode.hpp"
#include "tools/InfoCommand.hpp"
#include "tools/OutputCheck.hpp"

#include <exception>
#include <map>
#include <ostream>
#include <string>

#include <CLI/App.hpp>
#include <CLI/Config.hpp>
#include <CLI/Formatter.hpp>

namespace SensorFileTool {

namespace {

const std::map<std::string, RowFormat> kRowFormats{
    {"csv", RowFormat::kCsv}, {"tsv", RowFormat::kTsv}, {"json", RowFormat::kJsonLines}};

/// The command line as texts, with the command that it calls.
struct CommandLine {
    CLI::App app{"Looks into sensor files: recordings of sensors and their calibrations.",
                 "sensorfile"};
    CLI::App* info = app.add_subcommand("info", "Tell what is in files");
    CLI::App* cat = app.add_subcommand("cat", "Write the rows of a file as text");

    InfoOptions infoOptions;
    CatOptions catOptions;
    std::string encoding = "auto";
    std::string rows;
    std::string format = "csv";
    bool hasNoHeader = false;

    CommandLine() {
        app.require_subcommand(1);
        app.set_version_flag("--version", "sensorfile 2.5.0");
        app.footer(
            "Results go to the standard output, everything else to the standard error.\n"
            "Exit codes: 0 done, 1 failed, 2 wrong usage, 3 done, but data were lost or a file "
            "has\n"
            "problems.");
        defineInfo();
        defineCat();
    }

    [[nodiscard]] EncodingChoice getEncoding() const {
        if (encoding == "auto") return std::nullopt;
        return encoding == "binary";
    }

 private:
    void addEncoding(CLI::App& command) {
        command
            .add_option("--encoding", encoding, "The files' encoding; auto: by their first bytes")
            ->type_name("text|binary|auto")
            ->check(CLI::IsMember({"text", "binary", "auto"}));
    }

    void defineInfo() {
        info->add_option("FILE", infoOptions.paths, "Sensor files, or Kivra2 calibration files")
            ->required();
        addEncoding(*info);
        info->add_flag("--json", infoOptions.isJson, "Write a JSON object a line for each file");
    }

    void defineCat() {
        cat->add_option("FILE", catOptions.path, "A recording")->required();
        addEncoding(*cat);
        cat->add_option("--rows", rows, "Rows to write, counted from 0; the last is not written")
            ->type_name("FIRST:LAST");
        cat->add_option("--columns", catOptions.columns,
                        "Columns to write, in this order; * and ? stand for any characters")
            ->type_name("NAME,...")
            ->check([](const std::string& text) {
                return text.empty() ? std::string("no column is named") : std::string();
            });
        cat->add_option("--format", format, "Commas, tabs, or a JSON object a row")
            ->type_name("csv|tsv|json")
            ->check(CLI::IsMember({"csv", "tsv", "json"}));
        cat->add_flag("--no-header", hasNoHeader, "Leave out the line of column names");
    }
};

int callCat(CommandLine& line, std::ostream& output, std::ostream& errors) {
    CatOptions& options = line.catOptions;
    try {
        if (line.cat->count("--rows") > 0) options.rows = parseRowRange(line.rows);
        options.encoding = line.getEncoding();
        options.format = kRowFormats.at(line.format);
        options.hasHeader = !line.hasNoHeader;
        return cat(options, output, errors);
    } catch (const Poco::SyntaxException& error) {
        errors << "sensorfile: --rows: " << error.message() << '\n';
    } catch (const Poco::NotFoundException& error) {
        errors << "sensorfile: --columns: " << error.message() << '\n';
    }
    return kExitWrongUsage;
}

int callCommand(CommandLine& line, std::ostream& output, std::ostream& errors) {
    if (line.cat->parsed()) return callCat(line, output, errors);
    line.infoOptions.encoding = line.getEncoding();
    return info(line.infoOptions, output, errors);
}

}  // namespace

int runProgram(int argc, const char* const* argv, std::ostream& output, std::ostream& errors) {
    CommandLine line;
    try {
        line.app.parse(argc, argv);
    } catch (const CLI::ParseError& error) {
        return line.app.exit(error, output, errors) == 0 ? kExitDone : kExitWrongUsage;
    }
    try {
        const int code = callCommand(line, output, errors);
        output.flush();
        requireGood(output);
        return code;
    } catch (const Poco::IOException& error) {
        if (isPipeClosed(error)) return kExitDone;
        errors << "sensorfile: " << describeError(error) << '\n';
    } catch (const Poco::Exception& error) {
        errors << "sensorfile: " << describeError(error) << '\n';
    } catch (const std::exception& error) {
        errors << "sensorfile: " << error.what() << '\n';
    }
    return kExitFailed;
}

}  // namespace SensorFileTool
