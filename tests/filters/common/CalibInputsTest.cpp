#include "filters/common/CalibInputs.hpp"
#include "tests/support/BareFilter.hpp"
#include "tests/support/ExpectThrow.hpp"
#include "tests/support/FilterHarness.hpp"

#include <limits>
#include <optional>

#include <gmock/gmock.h>

using Filters::CalibInputs;
using SensorFile::SensorFileConfig;
using Support::BareFilter;
using Support::column;
using Support::FilterHarness;
using Support::matrix;
using testing::ElementsAre;

namespace {

constexpr const char* kBadType = "bad type";

class CalibInputsTest : public testing::Test {
 protected:
    void makePins(std::size_t count) {
        inputs.resize(count);
        inputs.getPins().show();
        for (std::size_t i = 1; i <= count; ++i)
            calib.set("CalibColNames#" + std::to_string(i), "C" + std::to_string(i));
        inputs.noteDescriptions();
    }

    // The names of the records that a file would get now.
    std::vector<std::string> records() {
        config = SensorFileConfig();
        inputs.addRecords(config, kBadType);
        std::vector<std::string> names;
        for (std::size_t i = 0; i < config.getCalibCount(); ++i)
            names.push_back(config.getCalibName(i));
        return names;
    }

    [[nodiscard]] Eigen::MatrixXd doubles(std::size_t record) const {
        return dynamic_cast<const SensorFileConfig::CalibData<Eigen::MatrixXd>&>(
                   config.getCalibData(record))
            .getMatrix();
    }

    [[nodiscard]] Eigen::MatrixXi integers(std::size_t record) const {
        return dynamic_cast<const SensorFileConfig::CalibData<Eigen::MatrixXi>&>(
                   config.getCalibData(record))
            .getMatrix();
    }

    Filters::MatrixInputPin& pin(std::size_t index) { return inputs.getPins()[index].getPin(); }

    std::optional<Eigen::MatrixXd> takeNewest(std::size_t index) {
        Eigen::MatrixXd newest;
        if (!Filters::takeNewest(pin(index), newest)) return std::nullopt;
        return newest;
    }

    BareFilter filter;
    FilterHarness calib{filter};
    CalibInputs inputs{filter};
    SensorFileConfig config;
};

}  // namespace

TEST_F(CalibInputsTest, NewestOfAFifoIsTheLastPushed) {
    makePins(1);
    pin(0).setBuffer({.size = 4, .isLifo = false});
    for (const double value : {1.0, 2.0, 3.0})
        calib.push("calibInput#1", column({value}));
    EXPECT_EQ(takeNewest(0), column({3.0}));
    EXPECT_EQ(takeNewest(0), std::nullopt);
    EXPECT_EQ(pin(0).getCounters().taken, 3U);
    EXPECT_EQ(pin(0).getCounters().cleared, 0U);
}

TEST_F(CalibInputsTest, NewestOfALifoIsTheLastPushedAndOlderOnesAreDropped) {
    makePins(1);
    pin(0).setBuffer({.size = 4, .isLifo = true});
    for (const double value : {1.0, 2.0, 3.0})
        calib.push("calibInput#1", column({value}));
    EXPECT_EQ(takeNewest(0), column({3.0}));
    EXPECT_EQ(takeNewest(0), std::nullopt);
    EXPECT_EQ(pin(0).getCounters().taken, 3U);
    EXPECT_EQ(pin(0).getCounters().cleared, 0U);
}

TEST_F(CalibInputsTest, SampleFetchedBeforeCountsAsOlder) {
    makePins(1);
    for (const bool isLifo : {false, true}) {
        pin(0).setBuffer({.size = 4, .isLifo = isLifo});
        calib.push("calibInput#1", column({1.0}));
        ASSERT_TRUE(pin(0).fetch());
        EXPECT_EQ(takeNewest(0), column({1.0}));
        calib.push("calibInput#1", column({2.0}));
        ASSERT_TRUE(pin(0).fetch());
        calib.push("calibInput#1", column({3.0}));
        EXPECT_EQ(takeNewest(0), column({3.0}));
    }
}

TEST_F(CalibInputsTest, DoubleRecordKeepsTheMatrixAsItIs) {
    makePins(1);
    calib.push("calibInput#1", matrix({{1.5, -2.25}, {3.0, 4.0}}));
    EXPECT_THAT(records(), ElementsAre("C1"));
    EXPECT_EQ(doubles(0), matrix({{1.5, -2.25}, {3.0, 4.0}}));
}

TEST_F(CalibInputsTest, IntegerRecordTruncatesTowardZero) {
    makePins(1);
    calib.choose("CalibColTypes#1", "INT32");
    inputs.noteDescriptions();
    calib.push("calibInput#1", matrix({{1.9, -1.9, 1e300}}));
    EXPECT_THAT(records(), ElementsAre("C1"));
    EXPECT_EQ(integers(0), (Eigen::MatrixXi(1, 3) << 1, -1, 2147483647).finished());
}

TEST_F(CalibInputsTest, OtherTypesAreRefused) {
    Support::expectThrow<Poco::DataException>(
        kBadType, [&] { Filters::addCalibRecord(config, "C", 2, column({1.0}), kBadType); });
    EXPECT_EQ(config.getCalibCount(), 0U);
}

TEST_F(CalibInputsTest, PinWithoutAnyMatrixIsSkipped) {
    makePins(2);
    calib.connect("calibInput#1");
    calib.push("calibInput#2", column({2.0}));
    EXPECT_THAT(records(), ElementsAre("C2"));
}

TEST_F(CalibInputsTest, MatricesAreRememberedInTheSlotOfTheirPin) {
    makePins(2);
    calib.connect("calibInput#1");
    calib.push("calibInput#2", column({2.0}));
    EXPECT_THAT(records(), ElementsAre("C2"));
    calib.push("calibInput#1", column({1.0}));
    EXPECT_THAT(records(), ElementsAre("C1", "C2"));
    EXPECT_EQ(doubles(0), column({1.0}));
    EXPECT_EQ(doubles(1), column({2.0}));
}

TEST_F(CalibInputsTest, RememberedMatrixIsUsedAgainWithoutNewData) {
    makePins(1);
    calib.push("calibInput#1", column({2.0}));
    records();
    EXPECT_THAT(records(), ElementsAre("C1"));
    EXPECT_EQ(doubles(0), column({2.0}));
}

TEST_F(CalibInputsTest, UnconnectedPinIsLeftOutThoughAMatrixIsRemembered) {
    makePins(1);
    calib.push("calibInput#1", column({2.0}));
    records();
    calib.disconnect("calibInput#1");
    EXPECT_THAT(records(), ElementsAre());
    calib.connect("calibInput#1");
    EXPECT_THAT(records(), ElementsAre("C1"));
}

TEST_F(CalibInputsTest, EmptyMatrixReplacesTheRememberedOneAndIsSkipped) {
    makePins(1);
    calib.push("calibInput#1", column({2.0}));
    records();
    calib.push("calibInput#1", Eigen::MatrixXd(0, 0));
    EXPECT_THAT(records(), ElementsAre());
    EXPECT_THAT(records(), ElementsAre());
}

TEST_F(CalibInputsTest, RemovedPinsForgetTheirMatrix) {
    makePins(2);
    calib.push("calibInput#2", column({2.0}));
    records();
    makePins(1);
    makePins(2);
    calib.connect("calibInput#2");
    EXPECT_THAT(records(), ElementsAre());
}

TEST_F(CalibInputsTest, NothingIsAddedUntilDescriptionsAreNoted) {
    makePins(1);
    calib.push("calibInput#1", column({2.0}));
    inputs.resize(2);
    EXPECT_THAT(records(), ElementsAre());
}
