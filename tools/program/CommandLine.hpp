#pragma once

#include "tools/common/Console.hpp"

namespace SensorFileTool {

/// The program sensorfile.
/// @return an ExitCode
int runProgram(int argc, const char* const* argv, Console& console);

}  // namespace SensorFileTool
