#include "host/filters/FilterImuSimulator.hpp"
#include "tests/host/filters/Support.hpp"

#include <cmath>

#include <gmock/gmock.h>

namespace Quoril::Core {
namespace {

using ::testing::ElementsAre;
using namespace TestKit;

class FilterImuSimulatorTest : public ::testing::Test {
 protected:
    void run(int calls) {
        for (int i = 0; i < calls; ++i)
            imu_.process();
    }

    FilterImuSimulator imu_{"imu"};
};

TEST_F(FilterImuSimulatorTest, PropertiesAndPinsOfAFreshSimulator) {
    EXPECT_THAT(
        imu_.getPropertyBag()->getNames(),
        ElementsAre("Rate", "Seed", "Count", "Start Time", "Acc Noise Density", "Gyr Noise Density",
                    "Mag Noise Density", "Acc Bias", "Gyr Bias", "Mag Bias", "Drop-out Probability",
                    "Raw Counts", "Active", "Send Calibration"));
    EXPECT_THAT(outputNames(imu_),
                ElementsAre("acc", "gyr", "mag", "frame", "button", "time", "accGain", "accOffset",
                            "gyrGain", "gyrOffset", "magGain", "magOffset"));
    EXPECT_EQ(get<double>(imu_, "Rate"), 200.0);
    EXPECT_FALSE(property(imu_, "Active").getIsPersistent());
    EXPECT_STREQ(imu_.getClassName(), "FilterImuSimulator");
    EXPECT_FALSE(imu_.isFinished());
}

TEST_F(FilterImuSimulatorTest, OneCallSendsOneFrameOnEveryPin) {
    struct Shape {
        const char* pin;
        Eigen::Index rows;
        Eigen::Index columns;
    };
    const Shape shapes[] = {{"acc", 3, 1},   {"gyr", 3, 1},    {"mag", 3, 1},
                            {"frame", 1, 3}, {"button", 1, 1}, {"time", 1, 1}};
    for (const Shape& shape : shapes) {
        FilterImuSimulator imu("imu");
        Receiver receiver(imu, shape.pin);
        imu.process();
        imu.process();
        ASSERT_EQ(receiver.count(), 2U) << shape.pin;
        ASSERT_TRUE(receiver.next());
        EXPECT_EQ(receiver.sample().value.rows(), shape.rows) << shape.pin;
        EXPECT_EQ(receiver.sample().value.cols(), shape.columns) << shape.pin;
        EXPECT_EQ(receiver.sample().timeStamp, 0.0);
        ASSERT_TRUE(receiver.next());
        EXPECT_EQ(receiver.sample().timeStamp, 1 / 200.0);
    }
}

TEST_F(FilterImuSimulatorTest, TimeStampsAreMultiplesFromTheStartTime) {
    set(imu_, "Rate", 819.0);
    set(imu_, "Start Time", 100.0);
    Receiver time(imu_, "time");
    run(1000);
    for (double i = 0; time.next(); ++i) {
        EXPECT_EQ(time.sample().timeStamp, 100.0 + i / 819.0);
        EXPECT_EQ(time.sample().value(0, 0), time.sample().timeStamp);
    }
}

TEST_F(FilterImuSimulatorTest, CounterWrapsAfter65535) {
    Receiver frame(imu_, "frame");
    run(65538);
    for (int i = 0; i < 65534; ++i)
        ASSERT_TRUE(frame.next());
    for (const double counter : {65534.0, 65535.0, 0.0, 1.0}) {
        ASSERT_TRUE(frame.next());
        EXPECT_EQ(frame.sample().value(0, 0), counter);
        EXPECT_EQ(frame.sample().value(0, 1), 0.0);
        EXPECT_EQ(frame.sample().value(0, 2), 200.0);
    }
}

TEST_F(FilterImuSimulatorTest, ButtonIsPressedForOneSecondOfTen) {
    set(imu_, "Rate", 10.0);
    set(imu_, "Start Time", 5.0);
    Receiver button(imu_, "button");
    run(210);
    const std::vector<double> values = button.takeValues();
    for (std::size_t i = 0; i < values.size(); ++i)
        EXPECT_EQ(values[i], i % 100 < 10 ? 1.0 : 0.0) << i;
}

TEST_F(FilterImuSimulatorTest, LostFramesAreCountedButNotSent) {
    set(imu_, "Drop-out Probability", 0.2);
    Receiver frame(imu_, "frame");
    Receiver acc(imu_, "acc");
    run(20000);
    EXPECT_EQ(acc.count(), 20000U);
    double last = -1.0;
    double share = 0.0;
    double lost = 0.0;
    for (double sent = 1.0; frame.next(); ++sent) {
        const double counter = frame.sample().value(0, 0);
        ASSERT_GT(counter, last);
        lost += counter - last - 1.0;
        last = counter;
        share = frame.sample().value(0, 1);
        EXPECT_EQ(share, lost / (sent + lost));
        EXPECT_EQ(frame.sample().timeStamp, counter / 200.0);
    }
    EXPECT_NEAR(share, 0.2, 0.02);
}

TEST_F(FilterImuSimulatorTest, EqualPropertiesGiveEqualSamples) {
    FilterImuSimulator other("other");
    for (FilterImuSimulator* imu : {&imu_, &other}) {
        set(*imu, "Seed", 42);
        set(*imu, "Drop-out Probability", 0.05);
    }
    Receiver a(imu_, "mag");
    Receiver b(other, "mag");
    run(500);
    for (int i = 0; i < 500; ++i)
        other.process();
    const std::vector<double> values = a.takeValues();
    EXPECT_EQ(values, b.takeValues());

    set(imu_, "Seed", -42);
    run(500);
    EXPECT_NE(values, a.takeValues());
}

TEST_F(FilterImuSimulatorTest, CalibrationComesBeforeTheFirstFrameAndOnCommand) {
    set(imu_, "Acc Bias", "0.1 -0.2 0.3");
    set(imu_, "Mag Bias", "2");
    Receiver gain(imu_, "accGain");
    Receiver offset(imu_, "accOffset");
    Receiver magOffset(imu_, "magOffset");
    Receiver acc(imu_, "acc");
    run(3);
    ASSERT_EQ(gain.count(), 1U);
    ASSERT_TRUE(gain.next());
    EXPECT_EQ(gain.sample().value, Eigen::MatrixXd::Identity(3, 3));
    ASSERT_TRUE(offset.next());
    EXPECT_EQ(offset.sample().value.rows(), 1);
    EXPECT_THAT(std::vector<double>(offset.sample().value.data(), offset.sample().value.data() + 3),
                ElementsAre(0.1, -0.2, 0.3));
    EXPECT_THAT(magOffset.takeValues(), ElementsAre(2, 2, 2));

    trigger(imu_, "Send Calibration");
    EXPECT_FALSE(imu_.getNextDueTime().has_value());
    run(1);
    EXPECT_EQ(gain.count(), 1U);
    EXPECT_EQ(acc.count(), 3U) << "the command must not hurry a frame";
    EXPECT_EQ(imu_.getNextDueTime(), 3 / 200.0);
    run(1);
    EXPECT_EQ(acc.count(), 4U);
}

TEST_F(FilterImuSimulatorTest, CalibrationIsSentAlsoAfterTheEndAndInAPause) {
    set(imu_, "Count", 1);
    Receiver gain(imu_, "gyrGain");
    run(2);
    EXPECT_TRUE(imu_.isFinished());
    trigger(imu_, "Send Calibration");
    EXPECT_FALSE(imu_.isFinished());
    run(1);
    EXPECT_EQ(gain.count(), 2U);
    EXPECT_TRUE(imu_.isFinished());
}

TEST_F(FilterImuSimulatorTest, RawCountsBecomeUnitsByTheCalibration) {
    set(imu_, "Raw Counts", true);
    set(imu_, "Gyr Bias", "0.1 0.2 0.3");
    FilterImuSimulator ideal("ideal");
    for (const char* density : {"Acc Noise Density", "Gyr Noise Density", "Mag Noise Density"}) {
        set(imu_, density, 0.0);
        set(ideal, density, 0.0);
    }
    Receiver counts(imu_, "gyr");
    Receiver values(ideal, "gyr");
    Receiver gain(imu_, "gyrGain");
    Receiver offset(imu_, "gyrOffset");
    run(100);
    for (int i = 0; i < 100; ++i)
        ideal.process();
    ASSERT_TRUE(gain.next());
    ASSERT_TRUE(offset.next());
    while (counts.next()) {
        ASSERT_TRUE(values.next());
        const Eigen::MatrixXd& sent = counts.sample().value;
        EXPECT_EQ(sent, sent.array().floor().matrix());
        const Eigen::MatrixXd measured =
            gain.sample().value * (sent - offset.sample().value.transpose());
        EXPECT_LE((measured - values.sample().value).cwiseAbs().maxCoeff(),
                  FilterImuSimulator::kGyrPerCount);
    }
}

TEST_F(FilterImuSimulatorTest, CountEndsTheRunAndActiveBeginsAnother) {
    set(imu_, "Count", 3);
    Receiver time(imu_, "time");
    Receiver gain(imu_, "magGain");
    run(10);
    EXPECT_TRUE(imu_.isFinished());
    EXPECT_FALSE(get<bool>(imu_, "Active"));
    set(imu_, "Active", true);
    EXPECT_FALSE(imu_.isFinished());
    run(10);
    EXPECT_THAT(time.takeTimes(), ElementsAre(0, 1 / 200.0, 2 / 200.0, 0, 1 / 200.0, 2 / 200.0));
    EXPECT_EQ(gain.count(), 2U);
}

TEST_F(FilterImuSimulatorTest, InactiveSimulatorPauses) {
    Receiver acc(imu_, "acc");
    run(1);
    set(imu_, "Active", false);
    run(5);
    EXPECT_EQ(acc.count(), 1U);
    EXPECT_FALSE(imu_.isFinished());
    EXPECT_FALSE(imu_.getNextDueTime().has_value());
    set(imu_, "Active", true);
    run(1);
    EXPECT_EQ(acc.count(), 2U);
}

TEST_F(FilterImuSimulatorTest, FramesAreDueByTheRateLostOnesIncluded) {
    set(imu_, "Rate", 100.0);
    set(imu_, "Drop-out Probability", 0.3);
    Receiver frame(imu_, "frame");
    run(1);
    ASSERT_TRUE(frame.next());
    for (int i = 0; i < 200; ++i) {
        const std::optional<double> due = imu_.getNextDueTime();
        run(1);
        ASSERT_TRUE(frame.next());
        ASSERT_TRUE(due.has_value());
        EXPECT_EQ(*due, frame.sample().value(0, 0) / 100.0);
    }
}

TEST_F(FilterImuSimulatorTest, RateAndSeedBeginAgain) {
    Receiver time(imu_, "time");
    run(2);
    set(imu_, "Rate", 100.0);
    run(2);
    set(imu_, "Seed", 3);
    run(1);
    EXPECT_THAT(time.takeTimes(), ElementsAre(0, 1 / 200.0, 0, 1 / 100.0, 0));
}

TEST_F(FilterImuSimulatorTest, ImpossibleValuesAreRefused) {
    for (const double rate : {0.0, -1.0, std::nan(""), HUGE_VAL})
        EXPECT_THROW(set(imu_, "Rate", rate), Poco::RangeException) << rate;
    for (const double probability : {-0.1, 0.991, 1.0, std::nan("")})
        EXPECT_THROW(set(imu_, "Drop-out Probability", probability), Poco::RangeException);
    for (const char* name : {"Acc Noise Density", "Gyr Noise Density", "Mag Noise Density"})
        EXPECT_THROW(set(imu_, name, -1.0), Poco::RangeException) << name;
    EXPECT_THROW(set(imu_, "Start Time", HUGE_VAL), Poco::RangeException);
    EXPECT_THROW(set(imu_, "Count", -1), Poco::RangeException);
    for (const char* text : {"", "x", "1 2", "1 2 3 4", "inf"})
        EXPECT_THROW(set(imu_, "Acc Bias", text), Poco::DataFormatException) << text;
    EXPECT_EQ(get<double>(imu_, "Rate"), 200.0);
}

}  // namespace
}  // namespace Quoril::Core
