#include "tools/common/Platform.hpp"
#include "tools/program/CommandLine.hpp"

#include <cstdlib>
#include <iostream>
#include <string_view>

namespace {

/// See no-color.org: any text in the variable but an empty one.
bool isColorWanted() {
    // NOLINTBEGIN(concurrency-mt-unsafe): no other thread is there to change the environment
    const char* const noColor = std::getenv("NO_COLOR");
    const char* const terminal = std::getenv("TERM");
    // NOLINTEND(concurrency-mt-unsafe)
    return (noColor == nullptr || *noColor == '\0') && terminal != nullptr &&
           std::string_view(terminal) != "dumb";
}

}  // namespace

int main(int argc, char** argv) {
    namespace Platform = SensorFileTool::Platform;
    std::ios::sync_with_stdio(false);
    std::cin.tie(nullptr);
    Platform::prepareStandardStreams();
    const bool isTerminal = Platform::isOutputTerminal();
    SensorFileTool::Console console{
        std::cin,  std::cout, std::cerr, isTerminal && isColorWanted(), Platform::isErrorTerminal(),
        isTerminal};
    return SensorFileTool::runProgram(argc, argv, console);
}
