#pragma once

namespace SensorFileTool {

/// What the program returns to the shell.
enum ExitCode : int {
    kExitDone = 0,
    kExitFailed = 1,
    kExitWrongUsage = 2,
    kExitProblems = 3,  ///< done, but data were lost or a file has problems
};

/// Of what two files came to: failures before problems.
[[nodiscard]] constexpr int worseOf(int one, int other) {
    if (one == kExitFailed || other == kExitFailed) return kExitFailed;
    return one > other ? one : other;
}

}  // namespace SensorFileTool
