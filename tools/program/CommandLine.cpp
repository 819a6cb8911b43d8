#include "tools/program/CommandLine.hpp"

#include "text/VisibleText.hpp"
#include "tools/common/ErrorText.hpp"
#include "tools/common/ExitCode.hpp"
#include "tools/common/OutputCheck.hpp"
#include "tools/common/UsageException.hpp"
#include "tools/program/Command.hpp"
#include "tools/program/OptionTree.hpp"

#include <exception>
#include <ostream>
#include <sstream>
#include <utility>

#include <CLI/App.hpp>
#include <CLI/Config.hpp>
#include <CLI/Formatter.hpp>

namespace SensorFileTool {

namespace {

/// The command line as texts, with the verb that it calls.
class CommandLine {
 public:
    CommandLine() {
        app_.require_subcommand(1);
        app_.set_version_flag("--version", "sensorfile 2.5.0");
        app_.footer(
            "A file named - is the standard input or output. Results go to the standard output, "
            "everything else to the standard error. No file is overwritten without --force. Exit "
            "codes: 0 done, 1 failed, 2 wrong usage, 3 done, but data were lost or a file has "
            "problems.");
        app_.formatter_fn([](const CLI::App* app, const std::string&, CLI::AppFormatMode) {
            return helpText(describeOptions(*app));
        });
        for (const CommandEntry& entry : listCommands()) {
            Verb verb{app_.add_subcommand(entry.name, entry.summary), entry.make()};
            verb.app->footer("");
            verb.command->define(*verb.app);
            verbs_.push_back(std::move(verb));
        }
    }

    CLI::App& getApp() { return app_; }

    /// Of the verb that was named.
    Command& getCommand() {
        for (const Verb& verb : verbs_)
            if (verb.app->parsed()) return *verb.command;
        throw UsageException("no verb is named");
    }

 private:
    struct Verb {
        CLI::App* app;
        std::unique_ptr<Command> command;
    };

    CLI::App app_{"Works with sensor files: recordings of sensors and their calibrations.",
                  "sensorfile"};
    std::vector<Verb> verbs_;
};

int callCommand(CommandLine& line, Console& console) {
    int code = kExitDone;
    try {
        code = line.getCommand().run(console);
        console.output.flush();
        requireGood(console.output);
        return code;
    } catch (const UsageException& error) {
        tellError(console, error.message());
        return kExitWrongUsage;
    } catch (const Poco::IOException& error) {
        if (isPipeClosed(error)) return code;
        tellError(console, describeError(error));
    } catch (const Poco::Exception& error) {
        tellError(console, describeError(error));
    } catch (const std::bad_alloc&) {
        tellError(console, "out of memory");
    } catch (const std::exception& error) {
        tellError(console, error.what());
    }
    return line.getCommand().failureCode();
}

}  // namespace

int runProgram(int argc, const char* const* argv, Console& console) {
    CommandLine line;
    try {
        line.getApp().parse(argc, argv);
    } catch (const CLI::ParseError& error) {
        std::ostringstream complaint;
        const int code = line.getApp().exit(error, console.output, complaint);
        console.errors << Texts::toVisibleLines(complaint.str());
        return code == 0 ? kExitDone : kExitWrongUsage;
    }
    return callCommand(line, console);
}

}  // namespace SensorFileTool
