#pragma once

#include <iosfwd>

namespace SensorFileTool {

/// The program sensorfile.
/// @return an ExitCode
int runProgram(int argc, const char* const* argv, std::ostream& output, std::ostream& errors);

}  // namespace SensorFileTool
