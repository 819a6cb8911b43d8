#include "filters/sensorfile/ReplayPacing.hpp"

#include <limits>
#include <vector>

#include <gmock/gmock.h>

using Mode = ReplayPacing::Mode;
using testing::ElementsAre;

namespace {

constexpr double kInfinity = std::numeric_limits<double>::infinity();
constexpr double kNan = std::numeric_limits<double>::quiet_NaN();

class ReplayPacingTest : public testing::Test {
 protected:
    // What a row gives: its time stamp, or -1 when it is passed over.
    double row(double fileTime = 0.0) {
        step = pacing.next(settings, fileTime);
        if (step.endsFileTime) settings.usesFileTime = false;
        sleeps.push_back(step.sleepTime);
        return step.isSent ? pacing.getTime() : -1.0;
    }

    void useTicks(double frequency) {
        settings.mode = Mode::kTicks;
        pacing.setFrequency(frequency);
    }
    void useSeconds() { settings.mode = Mode::kFrameNumber; }
    void useDelay(int milliseconds) {
        settings.usesFileTime = false;
        settings.delay = milliseconds;
    }

    ReplayPacing pacing;
    ReplayPacing::Settings settings;
    ReplayPacing::Step step;
    std::vector<int> sleeps;
};

}  // namespace

TEST_F(ReplayPacingTest, TicksAdvanceByTheFramesBetweenRows) {
    useTicks(200.0);
    EXPECT_DOUBLE_EQ(row(7), 0.005);
    EXPECT_DOUBLE_EQ(row(8), 0.010);
    EXPECT_DOUBLE_EQ(row(12), 0.030);
    EXPECT_THAT(sleeps, ElementsAre(5, 5, 20));
}

TEST_F(ReplayPacingTest, TicksSleepIsTruncated) {
    useTicks(819.0);
    row(0);
    row(10);
    EXPECT_THAT(sleeps, ElementsAre(1, 12));
}

TEST_F(ReplayPacingTest, WithoutAFrequencyTicksUseAHundredRowsPerSecond) {
    for (const double frequency : {0.0, -5.0, kNan}) {
        pacing = ReplayPacing();
        useTicks(frequency);
        EXPECT_DOUBLE_EQ(row(0), 0.01);
        EXPECT_DOUBLE_EQ(pacing.getFrequency(), 100.0);
    }
}

TEST_F(ReplayPacingTest, WrapOfTheCounterIsNeitherAGapNorAStepBack) {
    useTicks(100.0);
    row(65534);
    EXPECT_DOUBLE_EQ(row(65535), 0.02);
    EXPECT_DOUBLE_EQ(row(0), 0.03);
    EXPECT_DOUBLE_EQ(row(1), 0.04);
}

TEST_F(ReplayPacingTest, WithoutFrame65535ACounterTurnIsMute) {
    useTicks(100.0);
    EXPECT_DOUBLE_EQ(row(65534), 0.01);
    EXPECT_EQ(row(0), -1.0);
    EXPECT_EQ(row(1), -1.0);
    EXPECT_EQ(row(65533), -1.0);
    EXPECT_DOUBLE_EQ(row(65535), 0.02);
    EXPECT_DOUBLE_EQ(row(0), 0.03);
}

TEST_F(ReplayPacingTest, StepBackIsPassedOverWithoutASleep) {
    useTicks(100.0);
    row(5);
    sleeps.clear();
    EXPECT_EQ(row(4), -1.0);
    EXPECT_DOUBLE_EQ(pacing.getTime(), 0.01);
    EXPECT_DOUBLE_EQ(row(6), 0.02);
    EXPECT_THAT(sleeps, ElementsAre(0, 10));
}

TEST_F(ReplayPacingTest, FrameMetAgainIsSentAtTheSameTime) {
    useTicks(100.0);
    row(5);
    EXPECT_DOUBLE_EQ(row(5), 0.01);
    EXPECT_THAT(sleeps, ElementsAre(10, 0));
}

TEST_F(ReplayPacingTest, FramesAreTruncatedTowardZero) {
    useTicks(100.0);
    row(5.9);
    EXPECT_DOUBLE_EQ(row(6.1), 0.02);
    pacing.forgetFrame();
    EXPECT_DOUBLE_EQ(row(-0.5), 0.03);
}

TEST_F(ReplayPacingTest, FrameMinusOneLooksLikeNoFrame) {
    useTicks(100.0);
    EXPECT_DOUBLE_EQ(row(-1), 0.01);
    EXPECT_DOUBLE_EQ(row(500), 0.02);
    pacing.forgetFrame();
    EXPECT_EQ(row(-2), -1.0);
}

TEST_F(ReplayPacingTest, FramesBeyond32BitsAreCounted) {
    useTicks(100.0);
    row(4294967294.0);
    EXPECT_DOUBLE_EQ(row(4294967295.0), 0.02);
    EXPECT_DOUBLE_EQ(row(4294967296.0), 0.03);
}

TEST_F(ReplayPacingTest, TimeStampsThatAreNoFrameArePassedOver) {
    useTicks(100.0);
    row(5);
    EXPECT_EQ(row(kNan), -1.0);
    EXPECT_EQ(row(kInfinity), -1.0);
    EXPECT_EQ(row(-kInfinity), -1.0);
    EXPECT_EQ(row(1e300), -1.0);
    EXPECT_DOUBLE_EQ(row(6), 0.02);
}

TEST_F(ReplayPacingTest, AbsurdGapsSleepAsLongAsASleepCanBe) {
    useTicks(1e-3);
    row(0);
    row(1e18);
    EXPECT_THAT(sleeps, ElementsAre(1000000, 2147483647));
}

TEST_F(ReplayPacingTest, AfterARestartTheFirstFrameCountsOne) {
    useTicks(100.0);
    row(50);
    pacing.forgetFrame();
    EXPECT_DOUBLE_EQ(row(3), 0.02);
}

TEST_F(ReplayPacingTest, TicksWithoutFileTimeFollowTheDelay) {
    useTicks(200.0);
    useDelay(30);
    EXPECT_DOUBLE_EQ(row(), 0.03);
    EXPECT_DOUBLE_EQ(row(), 0.06);
    EXPECT_THAT(sleeps, ElementsAre(30, 30));
}

TEST_F(ReplayPacingTest, TicksWithoutDelayAdvanceByTheFrequency) {
    useTicks(200.0);
    useDelay(0);
    EXPECT_DOUBLE_EQ(row(), 0.005);
    settings.delay = 1;
    EXPECT_DOUBLE_EQ(row(), 0.006);
    EXPECT_THAT(sleeps, ElementsAre(0, 1));
}

TEST_F(ReplayPacingTest, SecondsFollowTheFile) {
    useSeconds();
    EXPECT_DOUBLE_EQ(row(0.5), 0.5);
    EXPECT_DOUBLE_EQ(row(0.75), 0.75);
    EXPECT_DOUBLE_EQ(row(10.5), 10.5);
    EXPECT_THAT(sleeps, ElementsAre(500, 250, 9750));
}

TEST_F(ReplayPacingTest, SecondsAreSleptToTheNearestMillisecond) {
    useSeconds();
    useDelay(10);
    for (int i = 1; i <= 200; ++i)
        EXPECT_NEAR(row(), 0.01 * i, 1e-12);
    EXPECT_THAT(sleeps, testing::Each(10));
}

TEST_F(ReplayPacingTest, JumpOfTenSecondsEndsTheUseOfTheFileTimeForGood) {
    useSeconds();
    pacing.setFrequency(100.0);
    settings.delay = 20;
    row(1.0);
    EXPECT_DOUBLE_EQ(row(11.0), 1.02);
    EXPECT_TRUE(step.endsFileTime);
    EXPECT_DOUBLE_EQ(row(11.01), 1.04);
    EXPECT_FALSE(step.endsFileTime);
    EXPECT_THAT(sleeps, ElementsAre(1000, 20, 20));
}

TEST_F(ReplayPacingTest, JumpJustBelowTenSecondsIsFollowed) {
    useSeconds();
    row(1.0);
    EXPECT_DOUBLE_EQ(row(10.999), 10.999);
    EXPECT_FALSE(step.endsFileTime);
}

TEST_F(ReplayPacingTest, TimeThatStandsStillOrGoesBackEndsTheUseOfTheFileTime) {
    for (const double next : {1.0, 0.5, -3.0, kNan, kInfinity, -kInfinity}) {
        pacing = ReplayPacing();
        settings = ReplayPacing::Settings();
        useSeconds();
        row(1.0);
        EXPECT_DOUBLE_EQ(row(next), 1.01) << next;
        EXPECT_TRUE(step.endsFileTime) << next;
    }
}

TEST_F(ReplayPacingTest, FileThatBeginsAtZeroSecondsIsNotFollowed) {
    useSeconds();
    EXPECT_DOUBLE_EQ(row(0.0), 0.01);
    EXPECT_TRUE(step.endsFileTime);
}

TEST_F(ReplayPacingTest, FallbackWithoutDelayAndFrequencyUsesAHundredRowsPerSecond) {
    useSeconds();
    settings.delay = 0;
    pacing.setFrequency(0.0);
    EXPECT_DOUBLE_EQ(row(50.0), 0.01);
    EXPECT_DOUBLE_EQ(pacing.getFrequency(), 100.0);
    EXPECT_THAT(sleeps, ElementsAre(0));
}

TEST_F(ReplayPacingTest, SecondsWithoutFileTimeAndDelayStandStill) {
    useSeconds();
    useDelay(0);
    pacing.setFrequency(200.0);
    EXPECT_DOUBLE_EQ(row(), 0.0);
    EXPECT_DOUBLE_EQ(row(), 0.0);
}

TEST_F(ReplayPacingTest, QuickRowsNeverSleepButKeepTheirTimes) {
    settings.isQuick = true;
    useTicks(100.0);
    EXPECT_DOUBLE_EQ(row(1), 0.01);
    settings.usesFileTime = false;
    EXPECT_DOUBLE_EQ(row(), 0.02);
    useSeconds();
    EXPECT_DOUBLE_EQ(row(), 0.03);
    settings.usesFileTime = true;
    EXPECT_DOUBLE_EQ(row(0.5), 0.5);
    EXPECT_DOUBLE_EQ(row(0.5), 0.51);
    EXPECT_THAT(sleeps, testing::Each(0));
}
