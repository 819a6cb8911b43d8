#include "tests/host/FakeClock.hpp"
#include "tests/host/FlowFixture.hpp"

#include <gmock/gmock.h>

namespace Quoril::Core {
namespace {

using std::chrono::duration_cast;
using std::chrono::milliseconds;
using ::testing::Each;
using ::testing::ElementsAre;

struct ClockHolder {
    FakeClock clock;
};

/// Flows whose time only moves when a layout waits.
class PacingTest : private ClockHolder, public FlowFixture {
 protected:
    PacingTest() : FlowFixture(ClockHolder::clock) {}

    TestSource& addSource(int rowCount) {
        auto& source = add<TestSource>("source");
        source.rowCount = rowCount;
        source.clock = &clock;
        return source;
    }
    void runToEnd() {
        flow.start();
        ASSERT_TRUE(waitUntilFinished());
        flow.stop();
    }
    static std::vector<long> millisecondsOf(const TestSource& source) {
        std::vector<long> times;
        for (const Clock::Instant at : source.sentAt)
            times.push_back(duration_cast<milliseconds>(at - source.sentAt.front()).count());
        return times;
    }

    using ClockHolder::clock;
};

TEST_F(PacingTest, OwnPaceCallsAtTheDueTimes) {
    TestSource& source = addSource(5);
    source.ownRate = 100.0;
    runToEnd();
    EXPECT_THAT(millisecondsOf(source), ElementsAre(0, 10, 20, 30, 40));
    EXPECT_THAT(clock.getWaits(), Each(milliseconds(10)));
}

TEST_F(PacingTest, OwnPaceDoesNotAddUpTheTimeOfCalls) {
    TestSource& source = addSource(5);
    source.ownRate = 100.0;
    auto& slow = add<TestSink>("slow");
    slow.onProcess = [&] {
        slow.passOne();
        clock.advance(milliseconds(3));
    };
    connect(source, slow);
    runToEnd();
    EXPECT_THAT(millisecondsOf(source), ElementsAre(0, 10, 20, 30, 40));
    EXPECT_THAT(clock.getWaits(), Each(milliseconds(7)));
}

TEST_F(PacingTest, ADayAtTheOwnPaceOrByStampsDoesNotDrift) {
    constexpr int kPerSecond = 2;
    constexpr int kRows = 24 * 3600 * kPerSecond;
    TestSource& source = addSource(kRows);
    source.ownRate = kPerSecond;
    source.stampRate = kPerSecond;
    auto& slow = add<TestSink>("slow");
    slow.onProcess = [&] {
        slow.passOne();
        clock.advance(std::chrono::microseconds(slow.calls % 9973));
    };
    connect(source, slow);
    runToEnd();
    EXPECT_EQ(source.sentAt.at(kRows - 1) - source.sentAt.at(0),
              (kRows - 1) * milliseconds(1000 / kPerSecond));

    source.sentRows = 0;
    source.sentAt.clear();
    flow.setPacing({.mode = Pacing::Mode::kFactor, .factor = 1.0});
    runToEnd();
    // A row is sent when the time of the one before it has come.
    EXPECT_EQ(source.sentAt.at(kRows - 1) - source.sentAt.at(1),
              (kRows - 2) * milliseconds(1000 / kPerSecond) -
                  (source.sentAt.at(1) - source.sentAt.at(0)));
}

TEST_F(PacingTest, OwnPaceCatchesUpAfterALongCall) {
    TestSource& source = addSource(5);
    source.ownRate = 100.0;
    auto& slow = add<TestSink>("slow");
    slow.onProcess = [&] {
        slow.passOne();
        if (slow.calls == 1) clock.advance(milliseconds(25));
    };
    connect(source, slow);
    runToEnd();
    EXPECT_THAT(millisecondsOf(source), ElementsAre(0, 25, 25, 30, 40));
}

TEST_F(PacingTest, SecondRunCountsFromItsOwnFirstCall) {
    TestSource& source = addSource(2);
    source.ownRate = 100.0;
    runToEnd();
    source.sentRows = 0;
    source.sentAt.clear();
    clock.advance(std::chrono::hours(1));
    runToEnd();
    EXPECT_THAT(millisecondsOf(source), ElementsAre(0, 10));
}

TEST_F(PacingTest, FactorPacesByTheStampsAndIgnoresTheOwnRate) {
    TestSource& source = addSource(5);
    source.ownRate = 1.0;
    source.stampRate = 100.0;
    flow.setPacing({.mode = Pacing::Mode::kFactor, .factor = 2.0});
    runToEnd();
    // A row is sent when the time of the one before it has come.
    EXPECT_THAT(millisecondsOf(source), ElementsAre(0, 0, 5, 10, 15));
}

TEST_F(PacingTest, FactorPacesSourcesThatKnowNothingOfPaces) {
    auto& source = add<TestFilter>("plain");
    source.addOutput("output");
    std::vector<Clock::Instant> sentAt;
    source.onProcess = [&] {
        if (sentAt.size() >= 4) return;
        sentAt.push_back(clock.now());
        TestFilter::push(*source.outputs.front(), 1.0, static_cast<double>(sentAt.size()));
    };
    flow.setPacing({.mode = Pacing::Mode::kFactor, .factor = 1.0});
    flow.start();
    ASSERT_TRUE(waitFor([&] { return look(source, [&] { return sentAt.size() >= 4; }); }));
    flow.stop();
    EXPECT_EQ(sentAt[3] - sentAt[0], std::chrono::seconds(2));
}

TEST_F(PacingTest, FactorSurvivesStampsThatGoBackAndJump) {
    TestSource& source = addSource(6);
    const std::vector<double> stamps{0.0, 0.01, 0.02, 0.0, 1.0e9, 1.0e9 + 0.01};
    source.stampOf = [&](int row) { return stamps.at(static_cast<std::size_t>(row)); };
    flow.setPacing({.mode = Pacing::Mode::kFactor, .factor = 1.0});
    runToEnd();
    EXPECT_THAT(millisecondsOf(source), ElementsAre(0, 0, 10, 20, 20, 20));
}

TEST_F(PacingTest, MaximumNeverWaitsForATime) {
    TestSource& source = addSource(1000);
    source.ownRate = 1.0;
    auto& sink = add<TestSink>("sink");
    connect(source, sink);
    flow.setPacing({.mode = Pacing::Mode::kMaximum});
    runToEnd();
    EXPECT_EQ(sink.received, numbers(1000));
    EXPECT_TRUE(clock.getWaits().empty());
}

TEST_F(PacingTest, SourceThatCannotTellIsAskedEveryMillisecondAndAfterAWhileLessOften) {
    auto& silent = add<TestFilter>("silent");
    silent.addOutput("output");
    flow.start();
    ASSERT_TRUE(waitFor([&] { return clock.getWaits().size() > 150; }));
    flow.stop();
    const auto waits = clock.getWaits();
    EXPECT_THAT(std::vector(waits.begin(), waits.begin() + 100), Each(milliseconds(1)));
    EXPECT_THAT(std::vector(waits.begin() + 100, waits.begin() + 150), Each(milliseconds(5)));
}

TEST_F(PacingTest, PeriodIsTheShortestTimeBetweenRounds) {
    LayoutManager& slow = flow.addLayout("slow", milliseconds(50));
    auto& source = dynamic_cast<TestSource&>(flow.addFilter("TestSource", "source", slow));
    source.rowCount = 4;
    source.clock = &clock;
    runToEnd();
    EXPECT_THAT(millisecondsOf(source), ElementsAre(0, 50, 100, 150));
}

}  // namespace
}  // namespace Quoril::Core
