#include "tools/program/CompletionCommand.hpp"

#include "tools/common/ExitCode.hpp"
#include "tools/program/CompletionScript.hpp"

#include <ostream>
#include <string>

#include <CLI/App.hpp>

namespace SensorFileTool {

namespace {

class CompletionCommand : public Command {
 public:
    void define(CLI::App& app) override {
        program_ = app.get_parent();
        app.add_option("SHELL", shell_, "bash, zsh or fish")
            ->type_name("bash|zsh|fish")
            ->required()
            ->check(CLI::IsMember({"bash", "zsh", "fish"}));
        app.footer(
            "bash: put the output into ~/.local/share/bash-completion/completions/sensorfile; zsh: "
            "into a file _sensorfile of a folder of $fpath; fish: into "
            "~/.config/fish/completions/sensorfile.fish");
    }

    int run(Console& console) override {
        const VerbEntry tree = describeOptions(*program_);
        if (shell_ == "bash") console.output << bashCompletion(tree);
        if (shell_ == "zsh") console.output << zshCompletion(tree);
        if (shell_ == "fish") console.output << fishCompletion(tree);
        return kExitDone;
    }

 private:
    const CLI::App* program_ = nullptr;
    std::string shell_;
};

}  // namespace

std::unique_ptr<Command> makeCompletionCommand() {
    return std::make_unique<CompletionCommand>();
}

}  // namespace SensorFileTool
