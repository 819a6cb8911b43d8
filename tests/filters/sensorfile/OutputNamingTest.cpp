#include "filters/sensorfile/OutputNaming.hpp"

#include <algorithm>
#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <rapidcheck/gtest.h>

using testing::ElementsAre;
using testing::IsEmpty;

namespace {

using Names = std::vector<std::string>;

OutputDescription pin(const std::string& name, std::size_t count) {
    return {name, count};
}

}  // namespace

TEST(OutputNamingTest, GroupsColumnsByTheirCommonLeadingPart) {
    EXPECT_THAT(detectOutputs(Names{"ACCX", "ACCY", "ACCZ", "COUNT"}, 3),
                ElementsAre(pin("ACC", 3), pin("COUNT", 1)));
}

TEST(OutputNamingTest, NoColumnsMakeNoPins) {
    EXPECT_THAT(detectOutputs(Names{}, 3), IsEmpty());
}

TEST(OutputNamingTest, LastColumnStandsAlone) {
    EXPECT_THAT(detectOutputs(Names{"COUNT"}, 3), ElementsAre(pin("COUNT", 1)));
}

TEST(OutputNamingTest, ShorterCommonPartsDoNotCount) {
    EXPECT_THAT(detectOutputs(Names{"AX", "AY", "AZ"}, 2),
                ElementsAre(pin("AX", 1), pin("AY", 1), pin("AZ", 1)));
    EXPECT_THAT(detectOutputs(Names{"AX", "AY", "AZ"}, 1), ElementsAre(pin("A", 3)));
}

TEST(OutputNamingTest, LeadingPartIsTheLongestOfTheFirstTwo) {
    EXPECT_THAT(detectOutputs(Names{"gyr_x1", "gyr_x2", "gyr_y1"}, 3),
                ElementsAre(pin("gyr_x", 2), pin("gyr_y1", 1)));
}

TEST(OutputNamingTest, SecondNameMayHaveAnotherLengthButLaterOnesMayNot) {
    EXPECT_THAT(detectOutputs(Names{"ACCX", "ACCLONG", "ACCZ"}, 3), ElementsAre(pin("ACC", 3)));
    // ACCLONG ends the first group and, with ACCZ, begins one that adds to it.
    EXPECT_THAT(detectOutputs(Names{"ACCX", "ACCY", "ACCLONG", "ACCZ"}, 3),
                ElementsAre(pin("ACC", 4)));
    EXPECT_THAT(detectOutputs(Names{"ACCX", "ACCY", "ACCLONG", "TIME"}, 3),
                ElementsAre(pin("ACC", 2), pin("ACCLONG", 1), pin("TIME", 1)));
}

TEST(OutputNamingTest, WholeNameMayBeTheLeadingPart) {
    EXPECT_THAT(detectOutputs(Names{"COUNT", "COUNTER"}, 3), ElementsAre(pin("COUNT", 2)));
    EXPECT_THAT(detectOutputs(Names{"COUNTER", "COUNT"}, 3), ElementsAre(pin("COUNT", 2)));
    EXPECT_THAT(detectOutputs(Names{"same", "same", "same"}, 3), ElementsAre(pin("same", 3)));
}

TEST(OutputNamingTest, NameMetAgainAddsToTheEarlierPin) {
    EXPECT_THAT(detectOutputs(Names{"ACCX", "ACCY", "TIME", "ACCZ", "ACCW"}, 3),
                ElementsAre(pin("ACC", 4), pin("TIME", 1)));
    EXPECT_THAT(detectOutputs(Names{"TIME", "x", "TIME"}, 3),
                ElementsAre(pin("TIME", 2), pin("x", 1)));
}

TEST(OutputNamingTest, EmptyNamesNeverGroup) {
    EXPECT_THAT(detectOutputs(Names{"", "a"}, 0), ElementsAre(pin("", 1), pin("a", 1)));
}

RC_GTEST_PROP(OutputNamingTest, EveryColumnIsCarriedAndNoPinNameStandsTwice, ()) {
    const auto columns =
        *rc::gen::container<Names>(rc::gen::container<std::string>(rc::gen::element('a', 'b')));
    const auto minLength = *rc::gen::inRange<std::size_t>(1, 5);
    const auto outputs = detectOutputs(columns, minLength);
    std::size_t sum = 0;
    std::vector<std::string> names;
    for (const OutputDescription& output : outputs) {
        sum += output.columnCount;
        RC_ASSERT(std::find(names.begin(), names.end(), output.name) == names.end());
        names.push_back(output.name);
    }
    RC_ASSERT(sum == columns.size());
}
