#include "filters/kivra2/FrameLossTracker.hpp"

#include <gtest/gtest.h>

namespace {

constexpr std::uint32_t kModulus = 65535;

// Updates with first, first + step, ... up to last.
void count(FrameLossTracker& tracker, std::uint32_t first, std::uint32_t last,
           std::uint32_t step = 1) {
    for (std::uint32_t value = first; value <= last; value += step)
        tracker.update(value);
}

}  // namespace

TEST(FrameLossTrackerTest, NothingIsLostBeforeTheFirstWindowIsFull) {
    FrameLossTracker tracker(kModulus);
    EXPECT_EQ(tracker.getLossRatio(), 0.0);
    count(tracker, 0, 199, 2);
    EXPECT_EQ(tracker.getLossRatio(), 0.0);
}

TEST(FrameLossTrackerTest, CompleteCounterLosesNothing) {
    FrameLossTracker tracker(kModulus);
    count(tracker, 0, 1000);
    EXPECT_EQ(tracker.getLossRatio(), 0.0);
}

TEST(FrameLossTrackerTest, EverySecondFrameLostIsAHalf) {
    FrameLossTracker tracker(kModulus);
    count(tracker, 0, 198, 2);
    EXPECT_EQ(tracker.getLossRatio(), 0.0);
    tracker.update(200);
    EXPECT_EQ(tracker.getLossRatio(), 0.5);
}

TEST(FrameLossTrackerTest, FirstValueIsNotKept) {
    FrameLossTracker tracker(kModulus);
    count(tracker, 100, 199);
    EXPECT_EQ(tracker.getLossRatio(), 0.0);
    tracker.update(200);
    // 101 to 200 came, 1 to 100 count as lost.
    EXPECT_EQ(tracker.getLossRatio(), 0.5);
}

TEST(FrameLossTrackerTest, JumpMayGoBeyondTheWindow) {
    FrameLossTracker tracker(kModulus);
    tracker.update(0);
    tracker.update(1000);
    EXPECT_EQ(tracker.getLossRatio(), 0.999);
}

TEST(FrameLossTrackerTest, CountsBeginAnewAfterEachWindow) {
    FrameLossTracker tracker(kModulus);
    count(tracker, 0, 200, 2);
    ASSERT_EQ(tracker.getLossRatio(), 0.5);
    count(tracker, 201, 399);
    EXPECT_EQ(tracker.getLossRatio(), 0.5);
    tracker.update(400);
    EXPECT_EQ(tracker.getLossRatio(), 0.0);
}

TEST(FrameLossTrackerTest, RepeatedValueIsNoFrame) {
    FrameLossTracker tracker(kModulus);
    tracker.update(0);
    for (int i = 0; i < 1000; ++i)
        tracker.update(1);
    tracker.update(200);
    EXPECT_EQ(tracker.getLossRatio(), 198.0 / 200.0);
}

TEST(FrameLossTrackerTest, ValueEqualToTheUnkeptFirstOneIsCounted) {
    FrameLossTracker tracker(kModulus);
    tracker.update(200);
    tracker.update(200);
    EXPECT_EQ(tracker.getLossRatio(), 199.0 / 200.0);
}

TEST(FrameLossTrackerTest, WrapFromTheModulusTo0IsOneStep) {
    FrameLossTracker tracker(kModulus);
    tracker.update(0);
    tracker.update(65535);
    EXPECT_EQ(tracker.getLossRatio(), 65534.0 / 65535.0);
    EXPECT_EQ(tracker.getWrapCount(), 0U);
    count(tracker, 0, 199);
    EXPECT_EQ(tracker.getWrapCount(), 1U);
    EXPECT_EQ(tracker.getLossRatio(), 0.0);
}

TEST(FrameLossTrackerTest, CounterThatBeginsAnewIsAWrap) {
    FrameLossTracker tracker(kModulus);
    count(tracker, 0, 10);
    tracker.update(0);
    EXPECT_EQ(tracker.getWrapCount(), 1U);
    // 10 frames before, then 65526 steps of which one came.
    EXPECT_EQ(tracker.getLossRatio(), 65525.0 / 65536.0);
}
