#include "tools/info/CatCommand.hpp"
#include "tools/info/InfoCommand.hpp"
#include "tools/program/Command.hpp"
#include "tools/program/CompletionCommand.hpp"
#include "tools/program/ManCommand.hpp"

namespace SensorFileTool {

const std::vector<CommandEntry>& listCommands() {
    static const std::vector<CommandEntry> kCommands{
        {"info", "Tell what is in files", &makeInfoCommand},
        {"cat", "Write the rows of a file as text", &makeCatCommand},
        {"completion", "Write a completion script for a shell", &makeCompletionCommand},
        {"man", "Write a manual page", &makeManCommand},
    };
    return kCommands;
}

}  // namespace SensorFileTool
