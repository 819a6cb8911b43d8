#include "filters/kivra2/FramePacing.hpp"

#include <cmath>
#include <limits>
#include <vector>

#include <gmock/gmock.h>

using testing::DoubleEq;
using testing::ElementsAre;
using testing::Pointwise;

namespace {

using Mode = FramePacing::Mode;

class FramePacingTest : public testing::Test {
 protected:
    // Takes the steps to counters: sleeps and replay times of the rows that are sent.
    void run(const std::vector<std::int32_t>& counters) {
        sleeps.clear();
        times.clear();
        for (const std::int32_t counter : counters) {
            const FramePacing::Step step = pacing.next(settings, counter);
            if (!step.isSent) continue;
            sleeps.push_back(step.sleepTime);
            times.push_back(pacing.getTime());
        }
    }

    void expectRun(const std::vector<std::int32_t>& expectedSleeps,
                   const std::vector<double>& expectedTimes) const {
        EXPECT_EQ(sleeps, expectedSleeps);
        EXPECT_THAT(times, Pointwise(DoubleEq(), expectedTimes));
    }

    FramePacing pacing;
    FramePacing::Settings settings;
    std::vector<std::int32_t> sleeps;
    std::vector<double> times;
};

}  // namespace

TEST_F(FramePacingTest, FileFrequencyPacesByTheCounterSteps) {
    settings.mode = Mode::kFileFrequency;
    pacing.setFrequency(100.0);
    run({10, 12, 13});
    expectRun({10, 20, 10}, {0.01, 0.03, 0.04});
}

TEST_F(FramePacingTest, SleepsAreTruncatedAfterTheMultiplication) {
    settings.mode = Mode::kFileFrequency;
    pacing.setFrequency(300.0);
    run({0, 1, 3, 6});
    expectRun({3, 3, 6, 10}, {1.0 / 300.0, 2.0 / 300.0, 4.0 / 300.0, 7.0 / 300.0});
}

TEST_F(FramePacingTest, TicksTakeTheDelayEach) {
    settings = {.mode = Mode::kTicks, .delay = 7};
    pacing.setFrequency(100.0);
    run({10, 12, 13});
    expectRun({7, 14, 7}, {0.007, 0.021, 0.028});
    settings.delay = 1;
    run({14});
    expectRun({1}, {0.029});
}

TEST_F(FramePacingTest, TicksOf0MillisecondsGoByTheFrequency) {
    settings = {.mode = Mode::kTicks, .delay = 0};
    pacing.setFrequency(50.0);
    run({10, 12});
    expectRun({0, 0}, {0.02, 0.06});
}

TEST_F(FramePacingTest, UnpacedTimeStandsStill) {
    pacing.setFrequency(100.0);
    run({10, 12});
    expectRun({0, 0}, {0.0, 0.0});
}

TEST_F(FramePacingTest, FrequencyThatIsNotPositiveBecomes100) {
    const double nan = std::numeric_limits<double>::quiet_NaN();
    for (const double hertz : {0.0, -0.0, -50.0, nan, -std::numeric_limits<double>::infinity()}) {
        pacing = FramePacing();
        settings.mode = Mode::kFileFrequency;
        pacing.setFrequency(hertz);
        run({5, 7});
        expectRun({10, 20}, {0.01, 0.03});
        EXPECT_EQ(pacing.getFrequency(), 100.0);
    }
}

TEST_F(FramePacingTest, FrequencyIsMendedInEveryMode) {
    pacing.setFrequency(0.0);
    run({5});
    EXPECT_EQ(pacing.getFrequency(), 100.0);
}

TEST_F(FramePacingTest, RowThatWentBackIsPassedOverWithoutMendingTheFrequency) {
    settings.mode = Mode::kFileFrequency;
    pacing.setFrequency(100.0);
    run({10});
    pacing.setFrequency(0.0);
    EXPECT_FALSE(pacing.next(settings, 9).isSent);
    EXPECT_EQ(pacing.getFrequency(), 0.0);
    EXPECT_DOUBLE_EQ(pacing.getTime(), 0.01);
}

TEST_F(FramePacingTest, CounterBeforeARowThatWentBackStays) {
    settings.mode = Mode::kFileFrequency;
    pacing.setFrequency(100.0);
    run({10, 5, 6, 12});
    expectRun({10, 20}, {0.01, 0.03});
}

TEST_F(FramePacingTest, EqualCountersAreSentAtOnce) {
    settings.mode = Mode::kFileFrequency;
    pacing.setFrequency(100.0);
    run({10, 10, 11});
    expectRun({10, 0, 10}, {0.01, 0.01, 0.02});
}

TEST_F(FramePacingTest, CounterAfter65535IsOneFrameLater) {
    settings.mode = Mode::kFileFrequency;
    pacing.setFrequency(100.0);
    run({65534, 65535, 0, 2});
    expectRun({10, 10, 10, 20}, {0.01, 0.02, 0.03, 0.05});
    run({65535, 65535});
    EXPECT_THAT(sleeps, ElementsAre(655330, 10));
}

TEST_F(FramePacingTest, Lost65535MutesATurnOfTheCounter) {
    settings.mode = Mode::kFileFrequency;
    pacing.setFrequency(100.0);
    run({65534, 0, 1, 65533, 65534, 65535, 0});
    expectRun({10, 0, 10, 10}, {0.01, 0.01, 0.02, 0.03});
}

TEST_F(FramePacingTest, ForgottenCounterIsOneFrameBeforeAnyOther) {
    settings.mode = Mode::kFileFrequency;
    pacing.setFrequency(100.0);
    run({10});
    pacing.forgetCounter();
    run({5});
    expectRun({10}, {0.02});
}

TEST_F(FramePacingTest, SleepsStayWithinTheirRange) {
    settings.mode = Mode::kFileFrequency;
    pacing.setFrequency(1e-9);
    run({10, 12});
    EXPECT_THAT(sleeps, ElementsAre(2147483647, 2147483647));
    pacing.setFrequency(std::numeric_limits<double>::denorm_min());
    run({13});
    EXPECT_THAT(sleeps, ElementsAre(2147483647));
    pacing.setFrequency(std::numeric_limits<double>::infinity());
    run({14});
    EXPECT_THAT(sleeps, ElementsAre(0));
    settings = {.mode = Mode::kTicks, .delay = 1000};
    pacing = FramePacing();
    run({0, 65535});
    EXPECT_THAT(sleeps, ElementsAre(1000, 65535000));
}
