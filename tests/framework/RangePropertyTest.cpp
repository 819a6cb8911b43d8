#include "framework/RangeProperty.hpp"
#include "tests/framework/TestSupport.hpp"
#include "tests/support/ExpectThrow.hpp"

#include <limits>
#include <vector>

#include <gmock/gmock.h>

namespace Quoril::Core {
namespace {

using FrameworkTest::BagOwner;
using FrameworkTest::CountingObserver;
using Support::expectThrow;
using testing::ElementsAre;

class RangePropertyTest : public testing::Test {
 public:
    RangePropertyTest() { property.setRange(0, 20, 0); }
    void see(const int& value) { seen.push_back(value); }

    BagOwner owner;
    RangeProperty<int> property{"Pins Number", owner.getPropertyBag(), 1};
    std::vector<int> seen;
};

TEST_F(RangePropertyTest, BothBoundsAreInside) {
    property.set(0);
    EXPECT_EQ(property.get(), 0);
    property.set(20);
    EXPECT_EQ(property.get(), 20);
}

TEST_F(RangePropertyTest, ValuesOutsideAreRefusedByNameOfRangeAndStep) {
    expectThrow<Poco::RangeException>("-1 does not fit in [0;20], (step : 0)",
                                      [&] { property.set(-1); });
    expectThrow<Poco::RangeException>("21 does not fit in [0;20], (step : 0)",
                                      [&] { property.set(21); });
    expectThrow<Poco::RangeException>("25 does not fit in [0;20], (step : 0)",
                                      [&] { property.set(25); });
    EXPECT_EQ(property.get(), 1);
}

TEST_F(RangePropertyTest, StepIsReportedNeverEnforced) {
    property.setRange(-10, 10, 5);
    property.set(3);
    EXPECT_EQ(property.get(), 3);
    expectThrow<Poco::RangeException>("11 does not fit in [-10;10], (step : 5)",
                                      [&] { property.set(11); });
}

TEST_F(RangePropertyTest, MessageHasNoThousandsSeparators) {
    const FrameworkTest::CommaLocale locale;
    property.setRange(-1000, 1000000, 1000);
    expectThrow<Poco::RangeException>("1234567 does not fit in [-1000;1000000], (step : 1000)",
                                      [&] { property.set(1234567); });
}

TEST_F(RangePropertyTest, FreshOneRefusesTheSmallestIntegerOnly) {
    RangeProperty<int> fresh("Fresh", owner.getPropertyBag());
    EXPECT_EQ(fresh.getMinimum(), -2147483647);
    EXPECT_EQ(fresh.getMaximum(), 2147483647);
    EXPECT_EQ(fresh.getStep(), 0);
    fresh.set(-2147483647);
    EXPECT_EQ(fresh.get(), -2147483647);
    fresh.set(2147483647);
    EXPECT_EQ(fresh.get(), 2147483647);
    expectThrow<Poco::RangeException>(
        "-2147483648 does not fit in [-2147483647;2147483647], (step : 0)",
        [&] { fresh.set(std::numeric_limits<int>::min()); });
}

TEST_F(RangePropertyTest, CallbackSeesValuesThatAreThenRefused) {
    property.attach(*this, &RangePropertyTest::see);
    EXPECT_THROW(property.set(99), Poco::RangeException);
    EXPECT_THAT(seen, ElementsAre(99));
    EXPECT_EQ(property.get(), 1);
}

TEST_F(RangePropertyTest, ReadOnlyIsFoundOutBeforeTheRange) {
    property.attach(*this, &RangePropertyTest::see);
    property.setIsWritable(false);
    expectThrow<Poco::NoPermissionException>("Property 'Pins Number' is not writable",
                                             [&] { property.set(99); });
    EXPECT_THAT(seen, ElementsAre());
}

TEST_F(RangePropertyTest, TextsAndAnyGoThroughTheRange) {
    property.deSerialize("12abc");
    EXPECT_EQ(property.get(), 12);
    EXPECT_THROW(property.deSerialize("21"), Poco::RangeException);
    EXPECT_THROW(property.setAny(Poco::Any(21)), Poco::RangeException);
    EXPECT_EQ(property.get(), 12);
}

TEST_F(RangePropertyTest, NewRangeIsAnAttributeAndLeavesTheValue) {
    CountingObserver observer;
    property.addObserver(observer);
    property.setRange(5, 6, 1);
    EXPECT_EQ(observer.attributes, 1);
    EXPECT_EQ(observer.values, 0);
    EXPECT_EQ(property.get(), 1);
    EXPECT_EQ(property.getMinimum(), 5);
    EXPECT_EQ(property.getMaximum(), 6);
    EXPECT_EQ(property.getStep(), 1);
}

}  // namespace
}  // namespace Quoril::Core
