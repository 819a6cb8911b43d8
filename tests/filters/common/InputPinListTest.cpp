#include "filters/common/ColumnTypeChoice.hpp"
#include "filters/common/InputPinList.hpp"
#include "tests/support/BareFilter.hpp"
#include "tests/support/ExpectThrow.hpp"
#include "tests/support/FilterHarness.hpp"

#include <gmock/gmock.h>

using Filters::InputPinList;
using Support::BareFilter;
using Support::FilterHarness;
using testing::ElementsAre;
using testing::IsEmpty;

namespace {

class InputPinListTest : public testing::Test {
 protected:
    BareFilter filter;
    FilterHarness harness{filter};
    InputPinList pins{
        filter,
        {{"in#", "Names#", "Types#"}, Filters::calibTypeChoices(), {.size = 8, .isLifo = true}}};
};

}  // namespace

TEST_F(InputPinListTest, PinsAreNumberedFromOneAndComeAndGoAtTheEnd) {
    pins.resize(3);
    EXPECT_THAT(harness.inputNames(), ElementsAre("in#1", "in#2", "in#3"));
    pins.resize(1);
    EXPECT_THAT(harness.inputNames(), ElementsAre("in#1"));
    pins.resize(2);
    EXPECT_THAT(harness.inputNames(), ElementsAre("in#1", "in#2"));
}

TEST_F(InputPinListTest, PinsAreNonBlockingWithTheBufferAskedFor) {
    pins.resize(1);
    EXPECT_FALSE(harness.input("in#1").getIsBlocking());
    EXPECT_EQ(harness.input("in#1").getBuffer().size, 8U);
    EXPECT_TRUE(harness.input("in#1").getBuffer().isLifo);
}

TEST_F(InputPinListTest, PropertiesAreShownOnDemandAndLeaveWithTheirPin) {
    pins.resize(2);
    EXPECT_THAT(harness.propertyNames(), IsEmpty());
    pins.show();
    EXPECT_THAT(harness.propertyNames(), ElementsAre("Names#1", "Types#1", "Names#2", "Types#2"));
    EXPECT_EQ(harness.get<std::string>("Names#2"), "");
    EXPECT_EQ(harness.get<unsigned>("Types#2"), 0U);
    pins.resize(1);
    EXPECT_THAT(harness.propertyNames(), ElementsAre("Names#1", "Types#1"));
    pins.resize(0);
    EXPECT_THAT(harness.propertyNames(), IsEmpty());
}

TEST_F(InputPinListTest, FirstPinWithoutNamesIsNamed) {
    pins.resize(3);
    pins.show();
    harness.set("Names#1", "a");
    Support::expectThrow<Poco::IOException>("Names#2 is empty!", [&] { pins.requireNames(); });
    harness.set("Names#2", ";");
    harness.set("Names#3", "c");
    pins.requireNames();
}

TEST_F(InputPinListTest, LocksAllProperties) {
    pins.resize(2);
    pins.show();
    pins.setIsWritable(false);
    EXPECT_THAT(harness.lockedNames(), ElementsAre("Names#1", "Types#1", "Names#2", "Types#2"));
    pins.setIsWritable(true);
    EXPECT_THAT(harness.lockedNames(), IsEmpty());
}
