#include "tools/CommandLine.hpp"

#include <iostream>

int main(int argc, char** argv) {
    std::ios::sync_with_stdio(false);
    return SensorFileTool::runProgram(argc, argv, std::cout, std::cerr);
}
