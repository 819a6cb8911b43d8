#pragma once

namespace Quoril::Runner {

/// What the program tells its caller at its end.
enum ExitCode : int {
    kExitDone = 0,
    kExitFailed = 1,
    kExitWrongInput = 2,  ///< wrong usage or flow file
    kExitLost = 3,        ///< done, but samples were lost
    kExitInterrupted = 130,
};

}  // namespace Quoril::Runner
