#include "host/runner/CommandLine.hpp"

#include "host/PluginLoader.hpp"
#include "host/runner/CheckCommand.hpp"
#include "host/runner/Console.hpp"
#include "host/runner/ExceptionText.hpp"
#include "host/runner/ExitCode.hpp"
#include "host/runner/InspectCommand.hpp"
#include "host/runner/NumberText.hpp"
#include "host/runner/RunCommand.hpp"
#include "host/runner/TimeText.hpp"
#include "text/VisibleText.hpp"

#include <cerrno>
#include <ostream>
#include <sstream>

#include <CLI/App.hpp>
#include <CLI/Config.hpp>
#include <CLI/Formatter.hpp>
#include <fmt/format.h>

namespace Quoril::Runner {

namespace {
/// The command line as texts, with the command that it calls.
struct CommandLine {
    CLI::App app{"Runs dataflows of inertial sensors: records, replays, calibrates.", "quoril"};
    CLI::App* run = app.add_subcommand("run", "Run a flow file");
    CLI::App* inspect = app.add_subcommand("inspect", "Show plug-ins, or one filter class");
    CLI::App* check = app.add_subcommand("check", "Tell what is wrong with a flow file");
    CLI::App* graph = app.add_subcommand("graph", "Write a flow as a Graphviz DOT graph");

    RunOptions options;
    InspectOptions inspection;
    std::string limit;
    std::string rate;
    std::string progress = "auto";
    bool isQuiet = false;
    bool isVerbose = false;

    CommandLine() {
        app.require_subcommand(1);
        app.set_version_flag("--version",
                             std::string("quoril, host framework ") + Core::kHostVersion);
        app.footer(
            "Results go to the standard output, everything else to the standard error.\n"
            "Exit codes: 0 done, 1 failed, 2 wrong usage or flow file, 3 done but samples were\n"
            "lost, 130 after Ctrl-C.");
        defineRun();
        defineInspect();
        addFlow(*check);
        addSettings(*check);
        addFlow(*graph);
    }

 private:
    void addFlow(CLI::App& command) {
        command.add_option("FLOW", options.flow.path, "The flow file")->required();
    }

    void addSettings(CLI::App& command) {
        command
            .add_option("--set", options.flow.settings, "Set a property over the flow file's value")
            ->type_name("FILTER.PROPERTY=VALUE")
            ->allow_extra_args(false);
        command.add_option("--plugin", options.flow.plugins, "Load this module file, too")
            ->type_name("PATH")
            ->allow_extra_args(false);
    }

    void defineRun() {
        addFlow(*run);
        addSettings(*run);
        run->add_option("--for", limit, "End the run after this time")->type_name("10s");
        run->add_option("--rate", rate,
                        "Pace sources by their time stamps: 1 is real time; max: no waiting")
            ->type_name("FACTOR|max");
        run->add_option("--progress", progress, "Show a progress line: auto is on a terminal")
            ->type_name("auto|always|never")
            ->check(CLI::IsMember({"auto", "always", "never"}));
        auto* quiet = run->add_flag("-q,--quiet", isQuiet, "No summary and no progress");
        run->add_flag("-v,--verbose", isVerbose, "Tell of plug-ins and script actions")
            ->excludes(quiet);
    }

    void defineInspect() {
        inspect->add_option("CLASS", inspection.className, "A filter class");
        inspect->add_option("--plugin", inspection.plugins, "Load this module file")
            ->type_name("PATH")
            ->allow_extra_args(false);
        inspect
            ->add_option("--set", inspection.settings,
                         "Set a property first, e.g. to see the pins that it makes")
            ->type_name("PROPERTY=VALUE")
            ->allow_extra_args(false);
        inspect->add_flag("--json", inspection.isJson, "Write JSON");
    }
};

/// @throws Poco::DataFormatException
std::optional<std::chrono::nanoseconds> parseLimit(const std::string& text) {
    if (text.empty()) return std::nullopt;
    try {
        return parseTime(text);
    } catch (const Poco::DataFormatException& error) {
        throw Poco::DataFormatException("--for: " + error.message());
    }
}

/// @throws Poco::DataFormatException
Core::Pacing parseRate(const std::string& text) {
    if (text.empty()) return {};
    if (text == "max") return {Core::Pacing::Mode::kMaximum, 1.0};
    const auto factor = parseNumber<double>(text);
    if (!factor || *factor <= 0.0)
        throw Poco::DataFormatException("--rate: '" + text +
                                        "' is neither a number above 0 nor max");
    return {Core::Pacing::Mode::kFactor, *factor};
}

int callRun(CommandLine& line, Console& console) {
    try {
        line.options.limit = parseLimit(line.limit);
        line.options.pacing = parseRate(line.rate);
    } catch (const Poco::DataFormatException& error) {
        console.error("quoril: " + error.message());
        return kExitWrongInput;
    }
    const bool isWanted =
        line.progress == "always" || (line.progress == "auto" && console.getIsTerminal());
    line.options.showsProgress = isWanted && !line.isQuiet;
    if (line.isQuiet) console.setVerbosity(Verbosity::kQuiet);
    if (line.isVerbose) console.setVerbosity(Verbosity::kVerbose);
    return runFlow(line.options, console);
}

int callCommand(CommandLine& line, std::ostream& output, Console& console) {
    if (line.run->parsed()) return callRun(line, console);
    if (line.inspect->parsed()) return inspect(line.inspection, output, console);
    if (line.check->parsed()) return checkFlow(line.options.flow, output, console);
    return graphFlow(line.options.flow.path, output, console);
}
}  // namespace

int runProgram(int argc, const char* const* argv, std::ostream& output, std::ostream& errors,
               bool isTerminal) {
    Console console(errors, isTerminal);
    CommandLine line;
    try {
        line.app.parse(argc, argv);
    } catch (const CLI::ParseError& error) {
        std::ostringstream complaint;
        const int code = line.app.exit(error, output, complaint);
        errors << Texts::toVisibleLines(complaint.str());
        return code == 0 ? kExitDone : kExitWrongInput;
    }
    try {
        const int code = callCommand(line, output, console);
        errno = 0;
        if (output.flush()) return code;
        // Whoever closes a pipe early, as head does, has got what was wanted.
        if (errno == EPIPE) return code;
        console.error("quoril: the standard output cannot be written");
    } catch (const Poco::Exception& error) {
        console.error("quoril: " + describeException(error));
    } catch (const std::exception& error) {
        console.error(std::string("quoril: ") + error.what());
    }
    return kExitFailed;
}

}  // namespace Quoril::Runner
