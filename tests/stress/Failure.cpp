#include "tests/stress/Failure.hpp"

#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <system_error>

namespace Stress {

namespace {

std::string& folderToRemove() {
    static std::string folder;
    return folder;
}

}  // namespace

void say(const std::string& line) {
    std::fprintf(stderr, "%s\n", line.c_str());
}

void removeAtFailure(const std::string& folder) {
    folderToRemove() = folder;
}

void tellFailure(const std::string& what) {
    say("FAILED: " + what);
    std::error_code error;
    if (!folderToRemove().empty()) std::filesystem::remove_all(folderToRemove(), error);
}

void fail(const std::string& what) {
    tellFailure(what);
    std::_Exit(EXIT_FAILURE);
}

}  // namespace Stress
