#include "host/runner/Names.hpp"

#include <gtest/gtest.h>

namespace Quoril::Runner {
namespace {

TEST(Names, DistanceCountsEditsAndExchanges) {
    struct Case {
        const char* a;
        const char* b;
        std::size_t distance;
    };
    const Case cases[] = {
        {"", "", 0},
        {"", "abc", 3},
        {"abc", "", 3},
        {"abc", "abc", 0},
        {"abc", "abd", 1},
        {"abc", "ab", 1},
        {"abc", "xabc", 1},
        {"Record", "Recrod", 1},
        {"Record", "record", 0},
        {"kitten", "sitting", 3},
    };
    for (const Case& each : cases) {
        EXPECT_EQ(editDistance(each.a, each.b), each.distance) << each.a << " " << each.b;
        EXPECT_EQ(editDistance(each.b, each.a), each.distance) << each.a << " " << each.b;
    }
}

TEST(Names, NearestIsTheFirstOfTheMostAlike) {
    EXPECT_EQ(findNearestName("Recrod", {"Binary", "Record", "Recorder"}), "Record");
    EXPECT_EQ(findNearestName("input#3", {"input#1", "input#2"}), "input#1");
}

TEST(Names, NothingIsNearToAnotherWord) {
    EXPECT_EQ(findNearestName("Frequency", {"Binary", "Record"}), "");
    EXPECT_EQ(findNearestName("x", {"Record"}), "");
    EXPECT_EQ(findNearestName(std::string(100000, 'x'), {std::string(100000, 'x')}), "");
}

TEST(Names, SuggestionNamesTheNearestOrAll) {
    EXPECT_EQ(suggestName("Recrod", {"Binary", "Record"}), "; did you mean 'Record'?");
    EXPECT_EQ(suggestName("Frequency", {"Binary", "Record"}), "; there are 'Binary', 'Record'");
    EXPECT_EQ(suggestName("Frequency", {}), "; there are none");
    EXPECT_EQ(suggestName("x", std::vector<std::string>(13, "Record")).substr(130), ", ...");
}

TEST(Names, SuggestionCutsLongNames) {
    EXPECT_EQ(suggestName("x", {std::string(60, 'a'), std::string(61, 'b')}),
              "; there are '" + std::string(60, 'a') + "', '" + std::string(60, 'b') + "...'");
}

}  // namespace
}  // namespace Quoril::Runner
