#include "filters/common/CalibOutputs.hpp"
#include "tests/support/BareFilter.hpp"
#include "tests/support/ExpectThrow.hpp"
#include "tests/support/FilterHarness.hpp"

#include <initializer_list>

#include <Poco/Exception.h>
#include <gmock/gmock.h>

using Filters::calibMatrix;
using Filters::MatrixOutputPin;
using Filters::MatrixOutputPins;
using Filters::publishCalibration;
using SensorFile::SensorFileConfig;
using Support::BareFilter;
using Support::expectThrow;
using Support::matrix;
using testing::ElementsAre;

namespace {

class CalibOutputsTest : public testing::Test {
 protected:
    CalibOutputsTest() {
        config.addCalibData("Gain", matrix({{1.0, 2.0}, {3.0, 4.0}}));
        config.addCalibData("Count", Eigen::MatrixXi((Eigen::MatrixXi(1, 2) << 7, -8).finished()));
    }

    static MatrixOutputPins makePins(std::initializer_list<const char*> names) {
        MatrixOutputPins pins;
        for (const char* name : names)
            pins.push_back(std::make_unique<MatrixOutputPin>(name, nullptr));
        return pins;
    }

    SensorFileConfig config;
    BareFilter filter;
    Support::FilterHarness harness{filter};
};

}  // namespace

TEST_F(CalibOutputsTest, IntegerRecordsBecomeDoubles) {
    EXPECT_EQ(calibMatrix(config.getCalibData(0)), matrix({{1.0, 2.0}, {3.0, 4.0}}));
    EXPECT_EQ(calibMatrix(config.getCalibData(1)), matrix({{7.0, -8.0}}));
}

TEST_F(CalibOutputsTest, RecordsOfOtherElementsAreRefused) {
    const SensorFileConfig::CalibData<Eigen::MatrixXf> record("F", Eigen::MatrixXf::Zero(1, 1));
    expectThrow<Poco::DataException>("Data type format is not supported!",
                                     [&] { (void)calibMatrix(record); });
}

TEST_F(CalibOutputsTest, PublishingFillsThePinsInOrder) {
    const MatrixOutputPins pins = makePins({"Count", "Gain"});
    publishCalibration(config, {"Count", "Gain"}, pins);
    EXPECT_EQ(pins[0]->getValue(), matrix({{7.0, -8.0}}));
    EXPECT_EQ(pins[1]->getValue(), matrix({{1.0, 2.0}, {3.0, 4.0}}));
}

TEST_F(CalibOutputsTest, PublishingNeedsTheRecord) {
    expectThrow<Poco::DataException>(
        "Calib data with name : Offset, cannot be found in file!",
        [&] { publishCalibration(config, {"Offset"}, makePins({"Offset"})); });
}

TEST_F(CalibOutputsTest, PublishingNeedsThePin) {
    expectThrow<Poco::DataException>(
        "Calib data with name : Count, cannot be created has output pin!", [&] {
            publishCalibration(config, {"Gain", "Count"}, makePins({"Gain"}));
        });
}

TEST_F(CalibOutputsTest, PublishingNeedsThePinsName) {
    expectThrow<Poco::DataException>(
        "Error, Calib pin has unexpected name! Name found: Count",
        [&] { publishCalibration(config, {"Gain"}, makePins({"Count"})); });
}

TEST_F(CalibOutputsTest, EveryNameMustHaveARecord) {
    EXPECT_TRUE(Filters::hasCalibs(config, {}));
    EXPECT_TRUE(Filters::hasCalibs(config, {"Count", "Gain", "Count"}));
    EXPECT_FALSE(Filters::hasCalibs(config, {"Count", "gain"}));
}

TEST_F(CalibOutputsTest, PinsAreMadeOfTheRecordsInOrderAndFilled) {
    config.addCalibData("Gain", matrix({{9.0}}));
    const MatrixOutputPins pins = Filters::makeCalibPins(filter, config);
    EXPECT_THAT(harness.outputNames(), ElementsAre("Gain", "Count", "Gain"));
    EXPECT_EQ(pins[0]->getValue(), matrix({{1.0, 2.0}, {3.0, 4.0}}));
    EXPECT_EQ(pins[1]->getValue(), matrix({{7.0, -8.0}}));
    EXPECT_EQ(pins[2]->getValue(), matrix({{9.0}}));
}

TEST_F(CalibOutputsTest, NoRecordsMakeNoPins) {
    EXPECT_TRUE(Filters::makeCalibPins(filter, SensorFileConfig()).empty());
}

TEST_F(CalibOutputsTest, RecordsOfOtherElementsLeaveNoPinsBehind) {
    config.addCalibData(std::make_unique<SensorFileConfig::CalibData<Eigen::MatrixXf>>(
        "F", Eigen::MatrixXf::Zero(1, 1)));
    expectThrow<Poco::DataException>("Data type format is not supported!",
                                     [&] { (void)Filters::makeCalibPins(filter, config); });
    EXPECT_THAT(harness.outputNames(), ElementsAre());
}

TEST_F(CalibOutputsTest, NamedPinsStandInTheOrderOfTheNamesAndAreEmpty) {
    const MatrixOutputPins pins = Filters::makeNamedPins(filter, {"b", "a", "b"});
    EXPECT_THAT(harness.outputNames(), ElementsAre("b", "a", "b"));
    for (const auto& pin : pins)
        EXPECT_EQ(pin->getValue().size(), 0);
    EXPECT_TRUE(Filters::makeNamedPins(filter, {}).empty());
}

TEST_F(CalibOutputsTest, PinsLeaveTheFilterWhenTheyAreDestroyed) {
    Filters::makeNamedPins(filter, {"a"}).clear();
    EXPECT_THAT(harness.outputNames(), ElementsAre());
}

TEST_F(CalibOutputsTest, AllMatricesAreSentWithOneTimeStamp) {
    const MatrixOutputPins pins = Filters::makeCalibPins(filter, config);
    harness.watch();
    Filters::sendAll(pins, 2.5);
    const auto gain = harness.pull("Gain");
    ASSERT_EQ(gain.size(), 1U);
    EXPECT_EQ(gain[0].value, matrix({{1.0, 2.0}, {3.0, 4.0}}));
    EXPECT_EQ(gain[0].timeStamp, 2.5);
    EXPECT_THAT(harness.pullTimes("Count"), ElementsAre(2.5));
    Filters::sendAll({}, 3.0);
    EXPECT_THAT(harness.pullTimes("Gain"), ElementsAre());
}
