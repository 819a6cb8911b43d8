#include "tools/program/ManCommand.hpp"

#include "tools/common/ExitCode.hpp"
#include "tools/common/UsageException.hpp"
#include "tools/program/ManPage.hpp"

#include <ostream>
#include <string>

#include <CLI/App.hpp>

namespace SensorFileTool {

namespace {

class ManCommand : public Command {
 public:
    void define(CLI::App& app) override {
        program_ = app.get_parent();
        app.add_option("VERB", verb_, "A verb's page; the program's own if not given");
        app.footer("Read it with: sensorfile man cut | man -l -");
    }

    int run(Console& console) override {
        const VerbEntry program = describeOptions(*program_);
        if (verb_.empty()) {
            console.output << manPage(program, program);
            return kExitDone;
        }
        for (const VerbEntry& verb : program.verbs) {
            if (verb.getWord() != verb_) continue;
            console.output << manPage(verb, program);
            return kExitDone;
        }
        throw UsageException("VERB: there is no verb '" + verb_ + "'");
    }

 private:
    const CLI::App* program_ = nullptr;
    std::string verb_;
};

}  // namespace

std::unique_ptr<Command> makeManCommand() {
    return std::make_unique<ManCommand>();
}

}  // namespace SensorFileTool
