#include "framework/InputPinBase.hpp"
#include "tests/filters/kivra2/Kivra2ReplayFixture.hpp"

#include <cmath>
#include <limits>
#include <new>
#include <numeric>

using Support::expectThrow;
using testing::DoubleEq;
using testing::Each;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::Pointwise;
using testing::SizeIs;

namespace {

/// A pin of a filter that takes no samples, as when memory has run out.
class RefusingPin final : public Quoril::Core::InputPinBase<Eigen::MatrixXd> {
 public:
    explicit RefusingPin(const std::string& name)
        : Pin(name, nullptr), InputPinBase<Eigen::MatrixXd>(name, nullptr) {}
    void push(const Sample& /*sample*/) override { throw std::bad_alloc(); }
};

}  // namespace

class ReplayKivra2RowsTest : public Kivra2ReplayFixture {
 protected:
    void startWith(const char* pace) {
        load();
        replay.set(pace, true);
        replay.watch();
        replay.set("Replay", true);
    }
    void expectTimes(const Times& times) {
        EXPECT_THAT(replay.pullTimes("3a"), Pointwise(DoubleEq(), times));
    }
    static std::vector<int> numbers(int first, int count) {
        std::vector<int> result(static_cast<std::size_t>(count));
        std::iota(result.begin(), result.end(), first);
        return result;
    }
};

TEST_F(ReplayKivra2RowsTest, OneRowACallOntoItsPins) {
    write({{7.0, 1.0, -2.0, 3.0, 4.0, 5.0, -32768.0, 255.0}, {8.0, 9, 9, 9, 9, 9, 9, 9}});
    start();
    replay.step();
    EXPECT_EQ(replay.pull("3a").at(0).value, Support::matrix({{1.0, -2.0, 3.0}}));
    EXPECT_EQ(replay.pull("3m").at(0).value, Support::matrix({{4.0, 5.0, -32768.0}}));
    EXPECT_EQ(replay.pull("FrameNumber").at(0).value, Support::matrix({{7.0, 0.0, 100.0}}));
    EXPECT_EQ(replay.pull("Button").at(0).value, Support::matrix({{255.0}}));
}

TEST_F(ReplayKivra2RowsTest, GyroscopeIsSentToo) {
    describe(100.0, /*hasGyro=*/true);
    write({{7.0, 1.0, 2.0, 3.0, 4.0, 5.0, 6.0, 10.0, 11.0, 12.0, 13.0}});
    start();
    replay.step();
    EXPECT_EQ(replay.pull("3g").at(0).value, Support::matrix({{10.0, 11.0, 12.0}}));
    EXPECT_EQ(replay.pull("Button").at(0).value, Support::matrix({{13.0}}));
}

TEST_F(ReplayKivra2RowsTest, OldFilesAreReplayed) {
    describeOld();
    write({{65535.0, -1.0, 2.0, 3.0, 4.0, 5.0, 6.0, 1.0}});
    start();
    replay.step();
    EXPECT_EQ(replay.pull("3a").at(0).value, Support::matrix({{-1.0, 2.0, 3.0}}));
    EXPECT_EQ(replay.pull("FrameNumber").at(0).value, Support::matrix({{65535.0, 0.0, 100.0}}));
    EXPECT_EQ(replay.pull("Button").at(0).value, Support::matrix({{1.0}}));
}

TEST_F(ReplayKivra2RowsTest, EveryCallSendsTheCalibrationStampedWithThePresentTime) {
    describe(100.0, /*hasGyro=*/true);
    addRecords(6);
    // The second row goes back and is passed over, the third call meets the end.
    writeCounters({5, 4});
    const Support::FixedClock clock(Poco::DateTime(2021, 3, 4, 5, 6, 7));
    start();
    replay.step(3);
    EXPECT_THAT(pullCounters(), ElementsAre(5));
    double value = 1.0;
    for (const char* pin : {"3aGain", "3aOff", "3mGain", "3mOff", "3gGain", "3gOff"}) {
        const auto samples = replay.pull(pin);
        ASSERT_THAT(samples, SizeIs(3)) << pin;
        EXPECT_EQ(samples[0].timeStamp, 1614834367.0) << pin;
        EXPECT_EQ(samples[2].value(0, 2), value++) << pin;
    }
    replay.step();
    EXPECT_THAT(replay.pull("3aGain"), IsEmpty());
}

TEST_F(ReplayKivra2RowsTest, ReplayEndsWithTheFile) {
    writeCounters({1, 2});
    start();
    replay.step(2);
    EXPECT_TRUE(isReplaying());
    replay.step();
    EXPECT_FALSE(isReplaying());
    EXPECT_THAT(pullCounters(), ElementsAre(1, 2));
    EXPECT_TRUE(replay.isWritable("Replay"));
}

TEST_F(ReplayKivra2RowsTest, AutoReplayBeginsAnewWithACallBetween) {
    writeCounters({5, 6});
    load();
    replay.set("AutoReplay", true);
    startWith("Keep file frequency");
    replay.step(3);
    EXPECT_THAT(pullCounters(), ElementsAre(5, 6));
    replay.step(2);
    EXPECT_THAT(pullCounters(), ElementsAre(5, 6));
    EXPECT_TRUE(isReplaying());
    expectTimes({0.01, 0.02, 0.03, 0.04});
}

TEST_F(ReplayKivra2RowsTest, AutoReplayOfATornFileKeepsItsColumns) {
    write({{1.0, 2.0, 3.0, 4.0, 5.0, 6.0, 7.0, 8.0}, {2.0, 3.0, 4.0, 5.0, 6.0, 7.0, 8.0, 9.0}});
    const std::string bytes = Support::readBytes(file);
    for (std::size_t torn = 1; torn < 15; ++torn) {
        Support::writeBytes(file, bytes.substr(0, bytes.size() - torn));
        load();
        replay.set("AutoReplay", true);
        start();
        replay.step(6);
        EXPECT_THAT(pullCounters(), ElementsAre(1, 1, 1)) << torn;
        EXPECT_THAT(replay.pullValues("3a"), Each(Row{2.0, 3.0, 4.0})) << torn;
    }
}

TEST_F(ReplayKivra2RowsTest, AutoReplayOfNoRowsSendsNoneAndGoesOn) {
    writeCounters({});
    load();
    replay.set("AutoReplay", true);
    start();
    replay.step(3);
    EXPECT_TRUE(isReplaying());
    EXPECT_THAT(pullCounters(), IsEmpty());
    EXPECT_THAT(sleeps.take(), IsEmpty());
}

TEST_F(ReplayKivra2RowsTest, PauseHoldsTheRow) {
    writeCounters({1, 2});
    start();
    replay.step();
    replay.set("Pause", true);
    replay.step(5);
    EXPECT_THAT(pullCounters(), ElementsAre(1));
    EXPECT_THAT(replay.pull("3aGain"), SizeIs(1));
    replay.set("Pause", false);
    replay.step();
    EXPECT_THAT(pullCounters(), ElementsAre(2));
}

TEST_F(ReplayKivra2RowsTest, PauseSetBeforehandHoldsTheFirstRow) {
    writeCounters({1});
    load();
    replay.set("Pause", true);
    replay.watch();
    replay.set("Replay", true);
    replay.step();
    EXPECT_THAT(pullCounters(), IsEmpty());
    EXPECT_TRUE(replay.get<bool>("Pause"));
}

TEST_F(ReplayKivra2RowsTest, StoppedFilterDoesNothing) {
    writeCounters({1});
    load();
    replay.watch();
    replay.step();
    EXPECT_THAT(replay.pull("3aGain"), IsEmpty());
}

TEST_F(ReplayKivra2RowsTest, EachStartBeginsWithTheFirstRowAndGoesOnInTime) {
    writeCounters({5, 6, 7});
    startWith("Keep file frequency");
    replay.step(2);
    stop();
    replay.set("Replay", true);
    replay.step(4);
    replay.set("Replay", true);
    replay.step();
    replay.set("Replay", true);
    replay.step();
    EXPECT_THAT(pullCounters(), ElementsAre(5, 6, 5, 6, 7, 5, 5));
    expectTimes({0.01, 0.02, 0.03, 0.04, 0.05, 0.06, 0.07});
}

TEST_F(ReplayKivra2RowsTest, FileFrequencyPacesByTheCounter) {
    writeCounters({10, 12});
    startWith("Keep file frequency");
    replay.step();
    sleeps.take();
    replay.step();
    EXPECT_THAT(sleeps.take(), ElementsAre(20));
    const Times expected{0.01, 0.03};
    for (const char* pin : {"3a", "3m", "Button", "FrameNumber"})
        EXPECT_THAT(replay.pullTimes(pin), Pointwise(DoubleEq(), expected)) << pin;
}

TEST_F(ReplayKivra2RowsTest, GyroscopeHasTheTimeOfTheOthers) {
    describe(100.0, /*hasGyro=*/true);
    writeCounters({10});
    startWith("Keep file frequency");
    replay.step();
    EXPECT_THAT(replay.pullTimes("3g"), ElementsAre(0.01));
}

TEST_F(ReplayKivra2RowsTest, FileFrequencyGoesBeforeTicks) {
    writeCounters({10});
    load();
    replay.set("Force Ticks", true);
    replay.set("SampleDelay", 500);
    startWith("Keep file frequency");
    replay.step();
    EXPECT_THAT(sleeps.take(), ElementsAre(10));
    expectTimes({0.01});
}

TEST_F(ReplayKivra2RowsTest, TicksTakeTheDelayAndItsChanges) {
    writeCounters({10, 12, 13});
    startWith("Force Ticks");
    replay.step(2);
    EXPECT_THAT(sleeps.take(), ElementsAre(10, 20));
    replay.set("SampleDelay", 1000);
    replay.step();
    EXPECT_THAT(sleeps.take(), ElementsAre(1000));
    expectTimes({0.01, 0.03, 1.03});
}

TEST_F(ReplayKivra2RowsTest, WithoutAPaceNobodyWaitsAndTimeStandsStill) {
    writeCounters({10, 12});
    start();
    replay.step(2);
    for (const std::int32_t sleep : sleeps.take())
        EXPECT_EQ(sleep, 0);
    expectTimes({0.0, 0.0});
}

TEST_F(ReplayKivra2RowsTest, FileWithoutFrequencyTickedBy0MillisecondsRunsAt100Hertz) {
    for (const double hertz : {0.0, -5.0}) {
        describe(hertz);
        writeCounters({10, 12});
        FilterReplayKivra2Format fresh("fresh");
        Support::FilterHarness other(fresh);
        other.set("Load File", file);
        other.set("SampleDelay", 0);
        other.set("Force Ticks", true);
        other.watch();
        other.set("Replay", true);
        other.step(2);
        EXPECT_THAT(other.pullTimes("3a"), Pointwise(DoubleEq(), Times{0.01, 0.03}));
        for (const std::int32_t sleep : sleeps.take())
            EXPECT_EQ(sleep, 0);
        // The first frame number tells the frequency as the file has it.
        const Rows frames = other.pullValues("FrameNumber");
        EXPECT_EQ(frames.at(0).at(2), hertz);
        EXPECT_EQ(frames.at(1).at(2), 100.0);
    }
}

TEST_F(ReplayKivra2RowsTest, FrequencyThatIsNoNumberRunsAt100Hertz) {
    describe(std::numeric_limits<double>::quiet_NaN());
    writeCounters({10, 12});
    load();
    replay.set("SampleDelay", 0);
    startWith("Force Ticks");
    replay.step(2);
    expectTimes({0.01, 0.03});
    const Rows frames = replay.pullValues("FrameNumber");
    EXPECT_TRUE(std::isnan(frames.at(0).at(2)));
    EXPECT_EQ(frames.at(1).at(2), 100.0);
}

TEST_F(ReplayKivra2RowsTest, FrequencyKeptFromTheFileBeforeIs100HertzInOneWithout) {
    writeCounters({1});
    load();
    replay.set("Keep file frequency", true);
    describe(0.0);
    writeCounters({10, 12});
    start();
    replay.step(2);
    EXPECT_THAT(sleeps.take(), ElementsAre(10, 20));
}

TEST_F(ReplayKivra2RowsTest, CounterThatWentBackDropsItsRow) {
    writeCounters({10, 5, 9, 11});
    startWith("Keep file frequency");
    replay.step(4);
    EXPECT_THAT(pullCounters(), ElementsAre(10, 11));
    expectTimes({0.01, 0.02});
}

// Readers in the same layout look at the pin's own sample until the next one is sent.
TEST_F(ReplayKivra2RowsTest, DroppedRowLeavesTheSampleThatWasSent) {
    writeCounters({10, 5});
    startWith("Keep file frequency");
    replay.step(2);
    const auto& pin = dynamic_cast<const Quoril::Core::OutputPin<Eigen::MatrixXd>&>(
        *filter.findOutputPin("FrameNumber"));
    EXPECT_EQ(pin.getSample().value(0, 0), 10.0);
}

TEST_F(ReplayKivra2RowsTest, CounterAfter65535IsOneFrameLater) {
    writeCounters({65534, 65535, 0, 1, 65535, 7});
    startWith("Keep file frequency");
    replay.step(6);
    EXPECT_THAT(pullCounters(), ElementsAre(65534, 65535, 0, 1, 65535, 7));
    EXPECT_THAT(sleeps.take(), ElementsAre(10, 10, 10, 10, 655340, 10));
}

TEST_F(ReplayKivra2RowsTest, Lost65535MutesATurnOfTheCounter) {
    writeCounters({65534, 0, 1, 65533, 65534});
    startWith("Keep file frequency");
    replay.step(5);
    EXPECT_THAT(pullCounters(), ElementsAre(65534, 65534));
    expectTimes({0.01, 0.01});
}

TEST_F(ReplayKivra2RowsTest, LossIsToldFromThe200thFrameOn) {
    std::vector<int> counters = numbers(0, 151);
    counters.insert(counters.end(), {200, 201});
    writeCounters(counters);
    start();
    replay.step(153);
    const Rows frames = replay.pullValues("FrameNumber");
    ASSERT_THAT(frames, SizeIs(153));
    EXPECT_EQ(frames[150].at(1), 0.0);
    EXPECT_EQ(frames[151].at(1), 49.0 / 200.0);
    EXPECT_EQ(frames[152].at(1), 49.0 / 200.0);
}

TEST_F(ReplayKivra2RowsTest, LossIsNotMeasuredOnRowsThatAreDropped) {
    std::vector<int> counters = numbers(0, 101);
    counters.push_back(50);
    for (const int counter : numbers(101, 100))
        counters.push_back(counter);
    writeCounters(counters);
    start();
    replay.step(202);
    EXPECT_EQ(replay.pullValues("FrameNumber").back(), (Row{200.0, 0.0, 100.0}));
}

TEST_F(ReplayKivra2RowsTest, FileBegunAnewCountsAsAWrapOfItsCounter) {
    writeCounters(numbers(0, 11));
    load();
    replay.set("AutoReplay", true);
    start();
    replay.step(13);
    EXPECT_EQ(replay.pullValues("FrameNumber").back().at(1), 65525.0 / 65536.0);
}

TEST_F(ReplayKivra2RowsTest, LongestSleepIsThatOf31Bits) {
    describe(1e-9);
    writeCounters({10, 12});
    startWith("Keep file frequency");
    replay.step(2);
    EXPECT_THAT(sleeps.take(), ElementsAre(2147483647, 2147483647));
}

TEST_F(ReplayKivra2RowsTest, StartWithoutAFileIsRefused) {
    expectThrow<Poco::NoPermissionException>("Property 'Replay' is not writable",
                                             [&] { replay.set("Replay", true); });
}

TEST_F(ReplayKivra2RowsTest, PeerThatTakesNoSampleEndsTheReplay) {
    writeCounters({1, 2});
    load();
    for (const char* name : {"3aGain", "3m"}) {
        RefusingPin peer(name);
        filter.findOutputPin(name)->attach(peer, /*skipNotification=*/true);
        replay.set("Replay", true);
        EXPECT_NO_THROW(replay.step()) << name;
        EXPECT_FALSE(isReplaying()) << name;
    }
}
