#pragma once

#include "tools/common/Console.hpp"
#include "tools/common/ExitCode.hpp"

#include <memory>
#include <string>
#include <vector>

namespace CLI {
class App;
}

namespace SensorFileTool {

/// A verb of the program: its options, and what it does.
class Command {
 public:
    Command() = default;
    Command(const Command&) = delete;
    Command& operator=(const Command&) = delete;
    virtual ~Command() = default;

    /// Adds the options, which are kept in this object.
    /// @param app  the verb's own part of the command line
    virtual void define(CLI::App& app) = 0;

    /// After the options have been read.
    /// @return an ExitCode
    /// @throws UsageException, Poco::Exception telling what went wrong; as requireGood()
    virtual int run(Console& console) = 0;

    /// What the shell is told when run() throws; wrong usage is always kExitWrongUsage.
    [[nodiscard]] virtual int failureCode() const { return kExitFailed; }
};

/// A verb's name and line in the help.
struct CommandEntry {
    const char* name;
    const char* summary;
    std::unique_ptr<Command> (*make)();
};

/// All verbs, in the order of the help.
[[nodiscard]] const std::vector<CommandEntry>& listCommands();

}  // namespace SensorFileTool
