#include "host/runner/Console.hpp"

#include <sstream>

#include <gtest/gtest.h>

namespace Quoril::Runner {
namespace {

TEST(Console, VerbosityChoosesTheLines) {
    for (const auto& [verbosity, expected] : {std::pair{Verbosity::kQuiet, "e\n"},
                                              {Verbosity::kNormal, "e\ni\n"},
                                              {Verbosity::kVerbose, "e\ni\nd\n"}}) {
        std::ostringstream stream;
        Console console(stream, false);
        console.setVerbosity(verbosity);
        console.error("e\n");
        console.info("i");
        console.detail("d");
        EXPECT_EQ(stream.str(), expected);
    }
}

TEST(Console, TextsOfOthersNeitherSteerTheTerminalNorEndTheLine) {
    std::ostringstream stream;
    Console console(stream, true);
    console.error("'a\nb\x1b[31m'\n");
    console.errorLines("a\nb\x1b[31m\n");
    console.infoLines("c\r");
    EXPECT_EQ(stream.str(), "'a\\x0ab\\x1b[31m'\na\nb\\x1b[31m\nc\\x0d\n");
}

TEST(Console, OnATerminalLinesGoAboveTheProgress) {
    std::ostringstream stream;
    Console console(stream, true);
    console.progress("10 %");
    console.error("oops");
    console.progress("20 %");
    console.endProgress();
    console.endProgress();
    EXPECT_EQ(stream.str(), "\r\x1b[K10 %\r\x1b[Koops\n10 %\r\x1b[K20 %\n");
}

TEST(Console, ElsewhereProgressComesInLines) {
    std::ostringstream stream;
    Console console(stream, false);
    console.progress("10 %");
    console.progress("20 %");
    console.endProgress();
    EXPECT_EQ(stream.str(), "10 %\n20 %\n");
}

}  // namespace
}  // namespace Quoril::Runner
