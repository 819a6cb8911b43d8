#include "filters/common/Sleep.hpp"
#include "tests/filters/sensorfile/CallDuringEdit.hpp"
#include "tests/filters/sensorfile/ReplayFixture.hpp"

#include <cstdint>
#include <limits>

#include <Poco/Exception.h>

using Support::column;
using Support::matrix;
using testing::ElementsAre;
using testing::IsEmpty;

class ReplayRowsTest : public ReplayFixture {
 protected:
    // Rows of a value and a frame number that counts on from a first one.
    static Rows counted(int first, int count) {
        Rows rows;
        for (int i = 0; i < count; ++i)
            rows.push_back({10.0 * i, static_cast<double>(first + i)});
        return rows;
    }
};

TEST_F(ReplayRowsTest, OneRowACallOntoAllDataPins) {
    columns({"ACCX", "ACCY", "ACCZ", "COUNT"});
    write({{1.0, 2.0, 3.0, 7.0}, {4.0, 5.0, 6.0, 8.0}});
    start();
    replay.step();
    EXPECT_EQ(replay.pullValues("ACC"), (Rows{{1.0, 2.0, 3.0}}));
    EXPECT_EQ(replay.pullValues("COUNT"), (Rows{{7.0}}));
    replay.step();
    EXPECT_EQ(replay.pull("ACC").at(0).value, column({4.0, 5.0, 6.0}));
}

TEST_F(ReplayRowsTest, EnlargedEarlierPinShiftsTheValuesOfLaterOnes) {
    columns({"ACCX", "ACCY", "TIME", "ACCZ", "ACCW"});
    write({{1.0, 2.0, 3.0, 4.0, 5.0}});
    start();
    replay.step();
    EXPECT_EQ(replay.pullValues("ACC"), (Rows{{1.0, 2.0, 3.0, 4.0}}));
    EXPECT_EQ(replay.pullValues("TIME"), (Rows{{5.0}}));
}

TEST_F(ReplayRowsTest, NamedPinsSendTheColumnOfTheirName) {
    columns({"ACCX", "ACCY", "COUNT"});
    write({{1.0, 2.0, 7.0}});
    replay.set("Auto Detect Output", false);
    replay.set("Manually Set ColsName", "ACCY ACCX ACCY");
    start();
    replay.step();
    EXPECT_EQ(replay.pullValues("ACCY", 0), (Rows{{2.0}}));
    EXPECT_EQ(replay.pullValues("ACCX"), (Rows{{1.0}}));
    EXPECT_EQ(replay.pullValues("ACCY", 1), (Rows{{2.0}}));
}

TEST_F(ReplayRowsTest, NamedTimeStampPinPacesThoughTheFileHasOtherColumnsBeforeIt) {
    columns({"ACCX", "ACCY", "COUNT"});
    write({{1.0, 2.0, 7.0}, {3.0, 4.0, 10.0}});
    replay.set("Auto Detect Output", false);
    replay.set("Manually Set ColsName", "ACCY, COUNT");
    start();
    replay.step(2);
    EXPECT_THAT(replay.pullTimes("ACCY"),
                testing::Pointwise(testing::DoubleEq(), Times{0.01, 0.04}));
}

TEST_F(ReplayRowsTest, TimeStampColumnThatNoNamedPinCarriesDoesNotPace) {
    columns({"ACCX", "COUNT"});
    write({{1.0, 7.0}, {2.0, 10.0}});
    replay.set("Auto Detect Output", false);
    replay.set("Manually Set ColsName", "ACCX");
    start();
    replay.step(2);
    EXPECT_FALSE(replay.get<bool>("EnableFileTimeStamp"));
    EXPECT_THAT(replay.pullTimes("ACCX"),
                testing::Pointwise(testing::DoubleEq(), Times{0.01, 0.02}));
}

TEST_F(ReplayRowsTest, CalibrationIsSentOnceAtEachStart) {
    columns({"a", "COUNT"});
    config.addCalibData("Gain", matrix({{1.0, 2.0}, {3.0, 4.0}}));
    write(counted(0, 3));
    load();
    replay.watch();
    EXPECT_THAT(replay.pull("Gain"), IsEmpty());
    replay.set("Replay", true);
    EXPECT_EQ(replay.pull("Gain").at(0).value, matrix({{1.0, 2.0}, {3.0, 4.0}}));
    replay.step(2);
    EXPECT_THAT(replay.pull("Gain"), IsEmpty());
    stop();
    EXPECT_THAT(replay.pull("Gain"), IsEmpty());
    replay.set("Replay", true);
    EXPECT_THAT(replay.pullTimes("Gain"), ElementsAre(testing::DoubleEq(0.02)));
}

TEST_F(ReplayRowsTest, NamedCalibrationIsFilledToo) {
    columns({"a", "COUNT"});
    config.addCalibData("K", Eigen::MatrixXi((Eigen::MatrixXi(1, 2) << 7, -8).finished()));
    write({});
    replay.set("Auto Detect Output", false);
    replay.set("Manually Set Calibs Name", "K");
    start();
    EXPECT_EQ(replay.pull("K").at(0).value, matrix({{7.0, -8.0}}));
}

TEST_F(ReplayRowsTest, CallsDoNothingUntilTheStart) {
    columns({"a", "COUNT"});
    write(counted(0, 2));
    load();
    replay.watch();
    replay.step(3);
    EXPECT_THAT(replay.pull("a"), IsEmpty());
    replay.set("Replay", true);
    replay.step();
    EXPECT_EQ(replay.pullValues("a"), (Rows{{0.0}}));
}

TEST_F(ReplayRowsTest, PauseHoldsTheRow) {
    columns({"a", "COUNT"});
    write(counted(0, 2));
    start();
    replay.step();
    replay.set("Pause", true);
    replay.step(3);
    replay.set("Pause", false);
    replay.step();
    EXPECT_EQ(replay.pullValues("a"), (Rows{{0.0}, {10.0}}));
    EXPECT_THAT(sleeps.take(), ElementsAre(10, 10));
}

TEST_F(ReplayRowsTest, EndOfTheFileSwitchesReplayOff) {
    columns({"a", "COUNT"});
    write(counted(0, 2));
    start();
    replay.step(2);
    EXPECT_TRUE(isReplaying());
    replay.step();
    EXPECT_FALSE(isReplaying());
    EXPECT_EQ(replay.pullValues("a"), (Rows{{0.0}, {10.0}}));
    EXPECT_TRUE(replay.isWritable("Load File"));
    replay.step();
    EXPECT_THAT(replay.pull("a"), IsEmpty());
}

TEST_F(ReplayRowsTest, AutoReplayBeginsAnewAndTimeGoesOn) {
    columns({"a", "COUNT"});
    write(counted(40, 2));
    replay.set("AutoReplay", true);
    start();
    replay.step(6);
    EXPECT_TRUE(isReplaying());
    EXPECT_EQ(replay.pullValues("a"), (Rows{{0.0}, {10.0}, {0.0}, {10.0}}));
    EXPECT_THAT(replay.pullTimes("COUNT"),
                testing::Pointwise(testing::DoubleEq(), Times{0.01, 0.02, 0.03, 0.04}));
}

TEST_F(ReplayRowsTest, AutoReplayOfTextBeginsAnewToo) {
    columns({"a", "COUNT"});
    write(counted(0, 2), /*binary=*/false);
    replay.set("Binary", false);
    replay.set("AutoReplay", true);
    start();
    replay.step(5);
    EXPECT_EQ(replay.pullValues("a"), (Rows{{0.0}, {10.0}, {0.0}, {10.0}}));
}

TEST_F(ReplayRowsTest, TornLastRowIsNotSentAndDoesNotShiftTheNextTurn) {
    columns({"a", "COUNT"});
    for (const bool binary : {true, false}) {
        write(counted(0, 2), binary);
        const std::string bytes = Support::readBytes(file);
        Support::writeBytes(file, bytes.substr(0, bytes.size() - 3));
        replay.set("Binary", binary);
        replay.set("AutoReplay", true);
        start();
        replay.step(4);
        EXPECT_EQ(replay.pullValues("a"), (Rows{{0.0}, {0.0}})) << binary;
        EXPECT_EQ(replay.pullValues("COUNT"), (Rows{{0.0}, {0.0}})) << binary;
        stop();
    }
}

TEST_F(ReplayRowsTest, LastRowOfTextThatEndsWithItsLastDigitIsNotSent) {
    columns({"a", "COUNT"});
    write(counted(0, 1), /*binary=*/false);
    Support::writeBytes(file, Support::readBytes(file) + "10\t1");
    replay.set("Binary", false);
    start();
    replay.step(2);
    EXPECT_FALSE(isReplaying());
    EXPECT_EQ(replay.pullValues("a"), (Rows{{0.0}}));
}

TEST_F(ReplayRowsTest, FileWithoutRowsEndsOrTurnsWithoutOutput) {
    columns({"a", "COUNT"});
    write({});
    start();
    replay.step();
    EXPECT_FALSE(isReplaying());
    replay.set("AutoReplay", true);
    replay.set("Replay", true);
    replay.step(10);
    EXPECT_TRUE(isReplaying());
    EXPECT_THAT(replay.pull("a"), IsEmpty());
    EXPECT_THAT(sleeps.take(), IsEmpty());
}

TEST_F(ReplayRowsTest, TextThatIsNoNumberEndsTheReplay) {
    columns({"a", "COUNT"});
    write(counted(0, 1), /*binary=*/false);
    Support::writeBytes(file, Support::readBytes(file) + "oops\t1\t\n5\t2\t\n");
    replay.set("Binary", false);
    start();
    replay.step(3);
    EXPECT_FALSE(isReplaying());
    EXPECT_EQ(replay.pullValues("a"), (Rows{{0.0}}));
}

TEST_F(ReplayRowsTest, CallThatFailsLetsNothingOutAndEndsTheReplay) {
    columns({"a", "COUNT"});
    write(counted(0, 3));
    start();
    const Filters::SleepFunction before =
        Filters::replaceSleep([](std::int32_t) { throw Poco::SystemException("no timer"); });
    EXPECT_NO_THROW(replay.step());
    Filters::replaceSleep(before);
    EXPECT_FALSE(isReplaying());
    EXPECT_TRUE(replay.isWritable("Load File"));
    replay.set("Replay", true);
    replay.step();
    EXPECT_EQ(replay.pullValues("a"), (Rows{{0.0}}));
}

TEST_F(ReplayRowsTest, StartWithoutAFileDoesNothing) {
    replay.set("Replay", true);
    replay.step(3);
    EXPECT_TRUE(isReplaying());
    EXPECT_TRUE(replay.get<bool>("EnableFileTimeStamp"));
    stop();
    EXPECT_FALSE(isReplaying());
}

TEST_F(ReplayRowsTest, SecondReplayBeginsAtTheFirstRowAndIsNotMute) {
    columns({"a", "COUNT"});
    write(counted(0, 5));
    start();
    replay.step(4);
    stop();
    replay.set("Replay", true);
    replay.step(2);
    EXPECT_EQ(replay.pullValues("a"), (Rows{{0.0}, {10.0}, {20.0}, {30.0}, {0.0}, {10.0}}));
    EXPECT_THAT(replay.pullTimes("COUNT").back(), testing::DoubleEq(0.06));
}

TEST_F(ReplayRowsTest, ReplaySetToTrueAgainBeginsAtTheFirstRow) {
    columns({"a", "COUNT"});
    write(counted(0, 5));
    start();
    replay.step(3);
    replay.set("Replay", true);
    replay.step();
    EXPECT_EQ(replay.pullValues("a"), (Rows{{0.0}, {10.0}, {20.0}, {0.0}}));
}

TEST_F(ReplayRowsTest, CallsDoNothingWhileTheStopIsUnderWay) {
    columns({"a", "COUNT"});
    write(counted(0, 5));
    start();
    replay.step();
    // The stop gives "Binary" back to the users.
    const CallDuringEdit edit(filter, replay.property("Binary"));
    stop();
    EXPECT_EQ(edit.calls, 1);
    EXPECT_EQ(replay.pullValues("a"), (Rows{{0.0}}));
}

TEST_F(ReplayRowsTest, RefusedStartKeepsLaterCallsAtWork) {
    columns({"a", "COUNT"});
    write(counted(0, 2));
    load();
    replay.set("Auto Detect Output", false);
    EXPECT_THROW(replay.set("Replay", true), Poco::IOException);
    replay.set("Auto Detect Output", true);
    start();
    replay.step();
    EXPECT_EQ(replay.pullValues("a"), (Rows{{0.0}}));
}

TEST_F(ReplayRowsTest, NextFileIsNotMutedByTheCounterOfTheLast) {
    columns({"a", "COUNT"});
    write(counted(5000, 2));
    start();
    replay.step(3);
    write(counted(0, 2));
    start();
    replay.step(2);
    EXPECT_EQ(replay.pullValues("a"), (Rows{{0.0}, {10.0}}));
}

TEST_F(ReplayRowsTest, NextFileIsSearchedForItsOwnTimeStampColumn) {
    columns({"COUNT", "a"});
    write({{1.0, 500.0}});
    start();
    replay.step(2);
    columns({"a", "COUNT"});
    write({{500.0, 1.0}, {500.0, 2.0}});
    start();
    replay.step(2);
    EXPECT_THAT(replay.pullTimes("a"), testing::Pointwise(testing::DoubleEq(), Times{0.02, 0.03}));
}

TEST_F(ReplayRowsTest, FrequencyPacesTheTicks) {
    columns({"a", "COUNT"}, 50.0);
    write({{0.0, 3.0}, {0.0, 4.0}, {0.0, 7.0}, {0.0, 6.0}, {0.0, 65535.0}, {0.0, 0.0}});
    start();
    replay.step(6);
    EXPECT_THAT(
        replay.pullTimes("a"),
        testing::Pointwise(testing::DoubleNear(1e-9),
                           Times{0.02, 0.04, 0.10, 0.10 + 65528 / 50.0, 0.12 + 65528 / 50.0}));
    EXPECT_THAT(sleeps.take(), ElementsAre(20, 20, 60, 1310560, 20));
}

TEST_F(ReplayRowsTest, FileWithoutFrequencyTicksAHundredTimesASecond) {
    columns({"a", "COUNT"}, 0.0);
    write(counted(0, 2));
    start();
    replay.step(2);
    EXPECT_THAT(replay.pullTimes("a"), testing::Pointwise(testing::DoubleEq(), Times{0.01, 0.02}));
    EXPECT_THAT(sleeps.take(), ElementsAre(10, 10));
    EXPECT_EQ(replay.get<double>("Frequency"), 0.0);
}

TEST_F(ReplayRowsTest, WithoutATimeStampColumnTheDelayPaces) {
    columns({"first", "second"});
    write({{1.0, 2.0}, {3.0, 4.0}});
    start();
    replay.step(2);
    EXPECT_FALSE(replay.get<bool>("EnableFileTimeStamp"));
    EXPECT_FALSE(replay.isWritable("EnableFileTimeStamp"));
    EXPECT_THAT(replay.pullTimes("first"),
                testing::Pointwise(testing::DoubleEq(), Times{0.01, 0.02}));
    EXPECT_THAT(sleeps.take(), ElementsAre(10, 10));
    stop();
    EXPECT_TRUE(replay.isWritable("EnableFileTimeStamp"));
}

TEST_F(ReplayRowsTest, TimeStampColumnIsTheNamedOneElseCount) {
    columns({"COUNT", "ticks"});
    write({{1.0, 100.0}, {4.0, 105.0}});
    replay.set("TimeStampColName", "ticks; ignored");
    start();
    replay.step(2);
    EXPECT_THAT(replay.pullTimes("ticks"),
                testing::Pointwise(testing::DoubleEq(), Times{0.01, 0.06}));
    stop();
    replay.set("TimeStampColName", "absent");
    replay.set("Replay", true);
    replay.step(2);
    EXPECT_THAT(replay.pullTimes("ticks"),
                testing::Pointwise(testing::DoubleEq(), Times{0.07, 0.10}));
}

TEST_F(ReplayRowsTest, EmptyTimeStampNameKeepsTheColumn) {
    columns({"COUNT", "ticks"});
    write({{1.0, 100.0}, {2.0, 105.0}});
    replay.set("TimeStampColName", "ticks");
    replay.set("TimeStampColName", "");
    replay.set("TimeStampColName", " ;");
    EXPECT_EQ(replay.get<std::string>("TimeStampColName"), " ;");
    start();
    replay.step(2);
    EXPECT_THAT(replay.pullTimes("ticks"),
                testing::Pointwise(testing::DoubleEq(), Times{0.01, 0.06}));
}

TEST_F(ReplayRowsTest, FirstElementOfAGroupedTimeStampPinCounts) {
    columns({"TIM1", "TIM2"});
    write({{1.0, 50.0}, {4.0, 60.0}});
    replay.set("TimeStampColName", "TIM");
    start();
    replay.step(2);
    EXPECT_THAT(replay.pullTimes("TIM"),
                testing::Pointwise(testing::DoubleEq(), Times{0.01, 0.04}));
}

TEST_F(ReplayRowsTest, TimeStampsThatAreNoNumberArePassedOver) {
    columns({"a", "COUNT"});
    write({{1.0, 1.0}, {2.0, std::numeric_limits<double>::quiet_NaN()}, {3.0, 2.0}});
    start();
    replay.step(3);
    EXPECT_EQ(replay.pullValues("a"), (Rows{{1.0}, {3.0}}));
}

TEST_F(ReplayRowsTest, SecondsOfTheFileAreSentAsTheyStand) {
    columns({"a", "TIME"});
    write({{1.0, 0.5}, {2.0, 1.25}});
    replay.choose("TimeStampMode", "FrameNumber");
    replay.set("TimeStampColName", "TIME");
    start();
    replay.step(2);
    EXPECT_THAT(replay.pullTimes("a"), ElementsAre(0.5, 1.25));
    EXPECT_THAT(sleeps.take(), ElementsAre(500, 750));
}

TEST_F(ReplayRowsTest, JumpOfTwelveSecondsEndsTheUseOfTheFileTimeForGood) {
    columns({"a", "TIME"});
    // The third row would be followed again.
    write({{1.0, 0.5}, {2.0, 12.5}, {3.0, 0.75}});
    replay.choose("TimeStampMode", "FrameNumber");
    replay.set("TimeStampColName", "TIME");
    start();
    replay.step(3);
    EXPECT_FALSE(replay.get<bool>("EnableFileTimeStamp"));
    EXPECT_FALSE(replay.isWritable("EnableFileTimeStamp"));
    EXPECT_THAT(replay.pullTimes("a"),
                testing::Pointwise(testing::DoubleEq(), Times{0.5, 0.51, 0.52}));
    EXPECT_THAT(sleeps.take(), ElementsAre(500, 10, 10));
    stop();
    EXPECT_FALSE(replay.get<bool>("EnableFileTimeStamp"));
}

TEST_F(ReplayRowsTest, RestartedSecondsAreInThePastAndNoLongerUsed) {
    columns({"a", "TIME"});
    write({{1.0, 0.5}, {2.0, 1.0}});
    replay.choose("TimeStampMode", "FrameNumber");
    replay.set("TimeStampColName", "TIME");
    replay.set("AutoReplay", true);
    start();
    replay.step(4);
    EXPECT_FALSE(replay.get<bool>("EnableFileTimeStamp"));
    EXPECT_THAT(replay.pullTimes("a"),
                testing::Pointwise(testing::DoubleEq(), Times{0.5, 1.0, 1.01}));
}

TEST_F(ReplayRowsTest, SecondsWithoutTheFileTimeFollowTheDelayAlone) {
    columns({"a", "TIME"}, /*frequency=*/0.0);
    write({{1.0, 0.5}, {2.0, 1.0}, {3.0, 1.5}});
    load();
    stop();
    replay.choose("TimeStampMode", "FrameNumber");
    replay.set("TimeStampColName", "TIME");
    replay.set("EnableFileTimeStamp", false);
    replay.set("SampleDelay", 20);
    replay.watch();
    replay.set("Replay", true);
    replay.step(2);
    stop();
    replay.set("SampleDelay", 0);
    replay.set("Replay", true);
    replay.step();
    // With no delay time stands still: a missing frequency is replaced for ticks only.
    EXPECT_THAT(replay.pullTimes("a"),
                testing::Pointwise(testing::DoubleEq(), Times{0.02, 0.04, 0.04}));
    EXPECT_THAT(sleeps.take(), ElementsAre(20, 20));
}

TEST_F(ReplayRowsTest, EveryRowIsSentAfterItsSleepAndOnAllPins) {
    columns({"a", "COUNT"});
    write(counted(0, 2));
    start();
    const Quoril::Core::AbstractOutputPin& first = *filter.findOutputPin("a");
    const Quoril::Core::AbstractOutputPin& last = *filter.findOutputPin("COUNT");
    std::vector<std::uint64_t> sentBefore;
    const Filters::SleepFunction before = Filters::replaceSleep(
        [&](std::int32_t) { sentBefore.push_back(first.getPushCount() + last.getPushCount()); });
    replay.step(2);
    Filters::replaceSleep(before);
    EXPECT_THAT(sentBefore, ElementsAre(0U, 2U));
    EXPECT_EQ(replay.pullTimes("a"), replay.pullTimes("COUNT"));
}

TEST_F(ReplayRowsTest, QuickProcessNeverSleeps) {
    columns({"a", "COUNT"});
    write(counted(0, 3));
    replay.set("QuickProcess", true);
    start();
    replay.step(3);
    EXPECT_THAT(sleeps.take(), IsEmpty());
    EXPECT_THAT(replay.pullTimes("a"),
                testing::Pointwise(testing::DoubleEq(), Times{0.01, 0.02, 0.03}));
}

TEST_F(ReplayRowsTest, DelayOfZeroFollowsTheFrequencyWithoutASleep) {
    columns({"a", "COUNT"}, 50.0);
    write(counted(0, 2));
    load();
    stop();
    replay.set("EnableFileTimeStamp", false);
    replay.set("SampleDelay", 0);
    replay.watch();
    replay.set("Replay", true);
    replay.step(2);
    EXPECT_THAT(sleeps.take(), IsEmpty());
    EXPECT_THAT(replay.pullTimes("a"), testing::Pointwise(testing::DoubleEq(), Times{0.02, 0.04}));
}

TEST_F(ReplayRowsTest, ReplayedPinsCanBeGoneWithoutAFileName) {
    columns({"a", "COUNT"});
    write(counted(0, 2));
    load();
    replay.set("Load File", "");
    replay.set("Replay", true);
    replay.step(3);
    EXPECT_FALSE(isReplaying());
    EXPECT_FALSE(replay.get<bool>("EnableFileTimeStamp"));
}
