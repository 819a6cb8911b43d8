#include "host/runner/Problems.hpp"

#include <gtest/gtest.h>

namespace Quoril::Runner {
namespace {

TEST(Problems, AreWrittenBySourceAndPlaceOneALine) {
    Problems problems;
    problems.add({"b.yaml", 2, 1}, "second");
    problems.warn({"b.yaml", 1, 9}, "first");
    problems.add({"a.yaml", 0, 0}, "whole file");
    problems.add({}, "no place");
    EXPECT_EQ(problems.toText(),
              "no place\n"
              "a.yaml: whole file\n"
              "b.yaml:1:9: warning: first\n"
              "b.yaml:2:1: second\n");
}

TEST(Problems, StayOnOneLineAndSteerNoTerminal) {
    Problems problems;
    problems.add({"a\nb.yaml", 1, 2}, "no '\x1b[31m'\n");
    EXPECT_EQ(problems.toText(), "a\\x0ab.yaml:1:2: no '\\x1b[31m'\\x0a\n");
}

TEST(Problems, KeepTheirOrderAtOnePlace) {
    Problems problems;
    problems.add({"a", 1, 1}, "z");
    problems.add({"a", 1, 1}, "b");
    EXPECT_EQ(problems.toText(), "a:1:1: z\na:1:1: b\n");
}

TEST(Problems, AreCutAfterFiftyLines) {
    Problems problems;
    for (int i = 1; i <= 53; ++i)
        problems.add({"a", i, 1}, "wrong");
    const std::string text = problems.toText();
    EXPECT_NE(text.find("a:50:1: wrong\nand 3 more\n"), std::string::npos) << text;
}

TEST(Problems, GiveTheExitCodeOfTheWorst) {
    Problems problems;
    EXPECT_EQ(problems.getExitCode(), 0);
    problems.warn({}, "w");
    EXPECT_EQ(problems.getExitCode(), 0);
    EXPECT_FALSE(problems.hasErrors());
    problems.add({}, "f", Severity::kFailure);
    EXPECT_EQ(problems.getExitCode(), 1);
    EXPECT_TRUE(problems.hasErrors());
    problems.add({}, "i");
    problems.add({}, "f", Severity::kFailure);
    EXPECT_EQ(problems.getExitCode(), 2);
}

}  // namespace
}  // namespace Quoril::Runner
