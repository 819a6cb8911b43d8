#include "filters/common/NameList.hpp"

#include <gmock/gmock.h>

using Filters::splitNames;
using testing::ElementsAre;
using testing::IsEmpty;

TEST(NameListTest, SplitsAtSemicolonCommaAndBlank) {
    EXPECT_THAT(splitNames("ax, ay;az w"), ElementsAre("ax", "ay", "az", "w"));
}

TEST(NameListTest, DropsEmptyNames) {
    EXPECT_THAT(splitNames(";; ,a,,b; "), ElementsAre("a", "b"));
}

TEST(NameListTest, TrimsOtherWhiteSpaceAroundNames) {
    EXPECT_THAT(splitNames("\ta\n;\t;b\r"), ElementsAre("a", "b"));
}

TEST(NameListTest, HasNoNamesInSeparatorsAlone) {
    EXPECT_THAT(splitNames(""), IsEmpty());
    EXPECT_THAT(splitNames(" ;, "), IsEmpty());
}
