#pragma once

namespace SensorFileTool {

/// What the program returns to the shell.
enum ExitCode : int {
    kExitDone = 0,
    kExitFailed = 1,
    kExitWrongUsage = 2,
    kExitProblems = 3,  ///< done, but data were lost or a file has problems
};

}  // namespace SensorFileTool
