#include "host/runner/CommandLine.hpp"
#include "host/runner/Platform.hpp"

#include <iostream>

int main(int argc, char** argv) {
    Quoril::Runner::takeSignalsOfFilesAsErrors();
    return Quoril::Runner::runProgram(argc, argv, std::cout, std::cerr,
                                      Quoril::Runner::isErrorStreamTerminal());
}
