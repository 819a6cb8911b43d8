#include "host/SourcePacer.hpp"

#include <algorithm>
#include <chrono>
#include <cmath>
#include <limits>

#include <gtest/gtest.h>

namespace Quoril::Core {
namespace {

using std::chrono::milliseconds;
using std::chrono::seconds;

constexpr SourcePacer::Instant kStart{std::chrono::hours(5)};

TEST(SourcePacerTest, NoStampIsDueBeforeTheFirstPush) {
    EXPECT_FALSE(SourcePacer().getStampDue());
}

TEST(SourcePacerTest, OwnDueCountsFromTheFirstRowAskedAbout) {
    SourcePacer pacer;
    EXPECT_EQ(pacer.getOwnDue(7.0, kStart), kStart);
    EXPECT_EQ(pacer.getOwnDue(7.25, kStart + seconds(9)), kStart + milliseconds(250));
}

TEST(SourcePacerTest, OwnDueStartsAnewAfterAPause) {
    SourcePacer pacer;
    EXPECT_EQ(pacer.getOwnDue(1.0, kStart), kStart);
    pacer.forgetOwnTime();
    EXPECT_EQ(pacer.getOwnDue(1.5, kStart + seconds(9)), kStart + seconds(9));
    EXPECT_EQ(pacer.getOwnDue(2.0, kStart + seconds(9)), kStart + milliseconds(9500));
}

TEST(SourcePacerTest, OwnDueStartsAnewWhenTheSourceWentBack) {
    SourcePacer pacer;
    EXPECT_EQ(pacer.getOwnDue(100.0, kStart), kStart);
    EXPECT_EQ(pacer.getOwnDue(0.0, kStart + seconds(1)), kStart + seconds(1));
    EXPECT_EQ(pacer.getOwnDue(0.5, kStart + seconds(1)), kStart + milliseconds(1500));
}

TEST(SourcePacerTest, OddOwnDueTimesAreNoTimeAtAll) {
    SourcePacer pacer;
    EXPECT_EQ(pacer.getOwnDue(0.0, kStart), kStart);
    EXPECT_EQ(pacer.getOwnDue(std::nan(""), kStart), kStart);
    EXPECT_EQ(pacer.getOwnDue(-1.0, kStart), kStart);
    EXPECT_GT(pacer.getOwnDue(std::numeric_limits<double>::infinity(), kStart),
              kStart + std::chrono::hours(1));
}

TEST(SourcePacerTest, StampsAreAbsoluteWhateverTheTimeOfTheCalls) {
    SourcePacer pacer;
    pacer.notePush(10.0, 1.0, kStart);
    EXPECT_EQ(pacer.getStampDue(), kStart);
    pacer.notePush(10.5, 1.0, kStart + milliseconds(3));
    EXPECT_EQ(pacer.getStampDue(), kStart + milliseconds(500));
    pacer.notePush(11.0, 1.0, kStart + milliseconds(777));
    EXPECT_EQ(pacer.getStampDue(), kStart + milliseconds(1000));
}

TEST(SourcePacerTest, FactorDividesTheTime) {
    SourcePacer pacer;
    pacer.notePush(0.0, 4.0, kStart);
    pacer.notePush(2.0, 4.0, kStart);
    EXPECT_EQ(pacer.getStampDue(), kStart + milliseconds(500));
}

TEST(SourcePacerTest, StampsThatGoBackStartANewTimeAtOnce) {
    SourcePacer pacer;
    pacer.notePush(0.0, 1.0, kStart);
    pacer.notePush(5.0, 1.0, kStart);
    pacer.notePush(0.0, 1.0, kStart + seconds(5));
    EXPECT_EQ(pacer.getStampDue(), kStart + seconds(5));
    pacer.notePush(1.0, 1.0, kStart + seconds(5));
    EXPECT_EQ(pacer.getStampDue(), kStart + seconds(6));
}

TEST(SourcePacerTest, StepsUpToTheLongestAreKeptAndLongerOnesAreJumps) {
    SourcePacer pacer;
    pacer.notePush(0.0, 1.0, kStart);
    pacer.notePush(60.0, 1.0, kStart);
    EXPECT_EQ(pacer.getStampDue(), kStart + seconds(60));
    pacer.notePush(1.0e9, 1.0, kStart + seconds(60));
    EXPECT_EQ(pacer.getStampDue(), kStart + seconds(60));
    pacer.notePush(1.0e9 + 1.0, 1.0, kStart + seconds(60));
    EXPECT_EQ(pacer.getStampDue(), kStart + seconds(61));
}

TEST(SourcePacerTest, StampsThatAreNoNumbersChangeNothing) {
    SourcePacer pacer;
    pacer.notePush(0.0, 1.0, kStart);
    pacer.notePush(1.0, 1.0, kStart);
    pacer.notePush(std::nan(""), 1.0, kStart);
    pacer.notePush(std::numeric_limits<double>::infinity(), 1.0, kStart);
    EXPECT_EQ(pacer.getStampDue(), kStart + seconds(1));
    pacer.notePush(2.0, 1.0, kStart);
    EXPECT_EQ(pacer.getStampDue(), kStart + seconds(2));
}

TEST(SourcePacerTest, PausedSourceGoesOnFromNow) {
    SourcePacer pacer;
    pacer.notePush(0.0, 1.0, kStart);
    pacer.notePush(1.0, 1.0, kStart);
    pacer.noteIdle();
    pacer.notePush(1.01, 1.0, kStart + seconds(300));
    EXPECT_EQ(pacer.getStampDue(), kStart + seconds(300));
}

TEST(SourcePacerTest, RowThatBringsNothingCostsNoTime) {
    SourcePacer pacer;
    pacer.notePush(0.0, 1.0, kStart);
    pacer.notePush(0.01, 1.0, kStart);
    pacer.noteIdle();
    pacer.notePush(0.03, 1.0, kStart + milliseconds(11));
    EXPECT_EQ(pacer.getStampDue(), kStart + milliseconds(30));
}

TEST(SourcePacerTest, SlowSourceThatNeverIdlesCatchesUp) {
    SourcePacer pacer;
    pacer.notePush(0.0, 1.0, kStart);
    pacer.notePush(0.01, 1.0, kStart + seconds(9));
    EXPECT_EQ(pacer.getStampDue(), kStart + milliseconds(10));
}

constexpr double kDay = 24.0 * 3600.0;

/// How far a due time is from where it belongs, seconds.
double distance(SourcePacer::Instant due, double secondsSinceStart) {
    const std::chrono::duration<double> since = due - kStart;
    return std::abs(since.count() - secondsSinceStart);
}

class PacerDayTest : public testing::TestWithParam<double> {};

TEST_P(PacerDayTest, OwnDueDoesNotDriftInADayOfLateCalls) {
    const auto rows = static_cast<int>(kDay * GetParam());
    SourcePacer pacer;
    SourcePacer::Instant now = kStart;
    double farthest = 0.0;
    for (int i = 0; i < rows; ++i) {
        const SourcePacer::Instant due = pacer.getOwnDue(i / GetParam(), now);
        farthest = std::max(farthest, distance(due, i / GetParam()));
        now = std::max(now, due) + std::chrono::microseconds(i % 997);
    }
    EXPECT_LT(farthest, 1e-6);
}

TEST_P(PacerDayTest, StampDueDoesNotDriftInADayOfSummedStamps) {
    const auto rows = static_cast<int>(kDay * GetParam());
    SourcePacer pacer;
    SourcePacer::Instant now = kStart;
    double stamp = 0.0;
    for (int i = 0; i < rows; ++i) {
        pacer.notePush(stamp, 1.0, now);
        now = std::max(now, *pacer.getStampDue()) + std::chrono::microseconds(i % 997);
        stamp += 1.0 / GetParam();
    }
    // The sum of the stamps itself is off by some microseconds.
    EXPECT_LT(distance(*pacer.getStampDue(), (rows - 1) / GetParam()), 1e-3);
}

INSTANTIATE_TEST_SUITE_P(Rates, PacerDayTest, testing::Values(200.0, 81.92, 1.0 / 3.0));

}  // namespace
}  // namespace Quoril::Core
