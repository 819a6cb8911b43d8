#include "filters/common/WallClock.hpp"
#include "tests/support/TestTime.hpp"

#include <gtest/gtest.h>

using Filters::gregorianTime;
using Filters::unixTime;
using Support::FixedClock;

TEST(WallClockTest, UnixTimeCountsSecondsFrom1970) {
    {
        const FixedClock clock(Poco::DateTime(1970, 1, 1));
        EXPECT_EQ(unixTime(), 0.0);
    }
    const FixedClock clock(Poco::DateTime(2026, 11, 20, 12, 30, 5));
    EXPECT_DOUBLE_EQ(unixTime(), 1'795'177'805.0);
}

TEST(WallClockTest, GregorianTimeCountsSecondsFrom15October1582) {
    {
        const FixedClock clock(Poco::DateTime(1582, 10, 15));
        EXPECT_EQ(gregorianTime(), 0.0);
    }
    {
        const FixedClock clock(Poco::DateTime(1582, 10, 16));
        EXPECT_DOUBLE_EQ(gregorianTime(), 86'400.0);
    }
    const FixedClock clock(Poco::DateTime(2026, 11, 20, 12, 30, 5));
    EXPECT_DOUBLE_EQ(gregorianTime(), 1'795'177'805.0 + 12'219'292'800.0);
}

TEST(WallClockTest, FractionsOfASecondCount) {
    const FixedClock clock(Poco::DateTime(1970, 1, 1, 0, 0, 1, 250, 500));
    EXPECT_DOUBLE_EQ(unixTime(), 1.2505);
    EXPECT_NEAR(gregorianTime() - 12'219'292'800.0, 1.2505, 4e-6);
}

TEST(WallClockTest, DatesBefore1970AreNegativeUnixTimes) {
    const FixedClock clock(Poco::DateTime(1969, 12, 31, 23, 59, 58, 500));
    EXPECT_DOUBLE_EQ(unixTime(), -1.5);
}
