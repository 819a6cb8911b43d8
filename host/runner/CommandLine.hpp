#pragma once

#include <iosfwd>

namespace Quoril::Runner {

/// The program: reads the command line and runs its command. Results go to the output stream,
/// everything else to the error stream.
/// @param isTerminal  the error stream goes to a terminal
/// @return the exit code of the program
[[nodiscard]] int runProgram(int argc, const char* const* argv, std::ostream& output,
                             std::ostream& errors, bool isTerminal);

}  // namespace Quoril::Runner
