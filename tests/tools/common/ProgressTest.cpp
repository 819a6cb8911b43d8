#include "tools/common/Progress.hpp"

#include <sstream>

#include <gtest/gtest.h>

namespace SensorFileTool {
namespace {

TEST(ProgressTest, NothingIsDrawnWithoutATerminal) {
    std::istringstream input;
    std::ostringstream output;
    std::ostringstream errors;
    const Console console{input, output, errors};
    {
        Progress progress(console, "a.bin", 10);
        for (std::uint64_t i = 0; i < 100000; ++i)
            progress.show(i);
    }
    EXPECT_EQ(output.str() + errors.str(), "");
}

TEST(ProgressTest, ABarIsDrawnAfterAWhileAndTakenAway) {
    std::istringstream input;
    std::ostringstream output;
    std::ostringstream errors;
    const Console console{input, output, errors, false, true};
    {
        Progress progress(console, "a.bin", 4);
        while (errors.str().empty())
            progress.show(1);
        EXPECT_EQ(errors.str(), "\ra.bin [#######                       ]  25 %\x1b[K");
    }
    EXPECT_TRUE(errors.str().ends_with("\r\x1b[K"));
    EXPECT_EQ(output.str(), "");
}

TEST(ProgressTest, TextsAreColouredOnlyWhereTheUserSeesThem) {
    std::istringstream input;
    std::ostringstream output;
    const Console plain{input, output, output};
    const Console coloured{input, output, output, true};
    EXPECT_EQ(paint(plain, Color::kBad, "text"), "text");
    EXPECT_EQ(paint(coloured, Color::kBad, "text"), "\x1b[31mtext\x1b[0m");
    EXPECT_EQ(paint(coloured, Color::kGood, "text"), "\x1b[32mtext\x1b[0m");
    EXPECT_EQ(paint(coloured, Color::kStrong, "text"), "\x1b[1mtext\x1b[0m");
}

}  // namespace
}  // namespace SensorFileTool
