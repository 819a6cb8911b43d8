#include "tools/calib/CalibCommand.hpp"
#include "tools/check/CheckCommand.hpp"
#include "tools/check/RecoverCommand.hpp"
#include "tools/convert/ConvertCommand.hpp"
#include "tools/diff/DiffCommand.hpp"
#include "tools/gen/GenCommand.hpp"
#include "tools/import/ImportCommand.hpp"
#include "tools/info/CatCommand.hpp"
#include "tools/info/InfoCommand.hpp"
#include "tools/parts/CutCommand.hpp"
#include "tools/parts/MergeCommand.hpp"
#include "tools/parts/SplitCommand.hpp"
#include "tools/plot/PlotCommand.hpp"
#include "tools/program/Command.hpp"
#include "tools/program/CompletionCommand.hpp"
#include "tools/program/ManCommand.hpp"
#include "tools/statistics/StatsCommand.hpp"
#include "tools/statistics/TimeCommand.hpp"

namespace SensorFileTool {

const std::vector<CommandEntry>& listCommands() {
    static const std::vector<CommandEntry> kCommands{
        {"info", "Tell what is in files", &makeInfoCommand},
        {"cat", "Write the rows of a file as text", &makeCatCommand},
        {"convert", "Turn a file into another encoding or format", &makeConvertCommand},
        {"import", "Make a recording of a CSV file", &makeImportCommand},
        {"cut", "Write a part of a recording", &makeCutCommand},
        {"split", "Divide a recording into parts", &makeSplitCommand},
        {"merge", "Put parts of a recording together", &makeMergeCommand},
        {"check", "Tell every defect of files", &makeCheckCommand},
        {"recover", "Write the whole rows of a damaged file", &makeRecoverCommand},
        {"diff", "Compare two files", &makeDiffCommand},
        {"time", "Tell how good a recording's time is", &makeTimeCommand},
        {"stats", "Sum up the columns of a recording", &makeStatsCommand},
        {"calib", "Show, take out, put in and compare calibrations", &makeCalibCommand},
        {"plot", "Write a page that shows a recording over time", &makePlotCommand},
        {"gen", "Make up a recording for trying things out", &makeGenCommand},
        {"completion", "Write a completion script for a shell", &makeCompletionCommand},
        {"man", "Write a manual page", &makeManCommand},
    };
    return kCommands;
}

}  // namespace SensorFileTool
