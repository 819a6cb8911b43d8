#include "filters/sensorfile/ReplayOutputs.hpp"
#include "sensorfile/ColumnType.hpp"
#include "tests/support/BareFilter.hpp"
#include "tests/support/ExpectThrow.hpp"
#include "tests/support/FilterHarness.hpp"

#include <array>

#include <gmock/gmock.h>

using SensorFile::SensorFileConfig;
using Support::BareFilter;
using Support::column;
using Support::expectThrow;
using Support::FilterHarness;
using Support::matrix;
using testing::ElementsAre;
using testing::IsEmpty;

namespace {

class ReplayOutputsTest : public testing::Test {
 protected:
    ReplayOutputsTest() {
        for (const char* name : {"a", "b", "c", "d"})
            config.addColumn(name, SensorFile::kDouble);
        config.addCalibData("Gain", matrix({{1.0, 2.0}, {3.0, 4.0}}));
        config.addCalibData("Count", Eigen::MatrixXi((Eigen::MatrixXi(1, 2) << 7, -8).finished()));
    }

    void fillAndSend() {
        constexpr std::array<double, 4> kRow{1.0, 2.0, 3.0, 4.0};
        outputs.fill(kRow);
        outputs.sendData(0.5);
    }

    BareFilter filter;
    FilterHarness harness{filter};
    ReplayOutputs outputs{filter};
    SensorFileConfig config;
};

}  // namespace

TEST_F(ReplayOutputsTest, DetectedPinsTakeTheColumnsInOrder) {
    outputs.makeDetected(config, {{"first", 3}, {"last", 1}});
    EXPECT_THAT(harness.outputNames(), ElementsAre("first", "last", "Gain", "Count"));
    harness.watch();
    fillAndSend();
    outputs.sendCalibration(0.25);
    EXPECT_EQ(harness.pull("first").at(0).value, column({1.0, 2.0, 3.0}));
    EXPECT_EQ(harness.pull("last").at(0).value, column({4.0}));
    EXPECT_EQ(harness.pull("Gain").at(0).value, matrix({{1.0, 2.0}, {3.0, 4.0}}));
    EXPECT_EQ(harness.pullTimes("Count"), std::vector<double>{0.25});
}

TEST_F(ReplayOutputsTest, RecordsOfEqualNamesKeepTheirOwnMatrix) {
    config.addCalibData("Gain", column({9.0}));
    outputs.makeDetected(config, {});
    harness.watch();
    outputs.sendCalibration(0.0);
    EXPECT_EQ(harness.pull("Gain", 0).at(0).value, matrix({{1.0, 2.0}, {3.0, 4.0}}));
    EXPECT_EQ(harness.pull("Gain", 1).at(0).value, column({9.0}));
}

TEST_F(ReplayOutputsTest, NamedPinsTakeTheColumnOfTheirName) {
    outputs.makeNamed(config, {"d", "b", "d"}, {"Count"});
    EXPECT_THAT(harness.outputNames(), ElementsAre("d", "b", "d", "Count"));
    harness.watch();
    fillAndSend();
    EXPECT_EQ(harness.pull("d", 0).at(0).value, column({4.0}));
    EXPECT_EQ(harness.pull("b").at(0).value, column({2.0}));
    EXPECT_EQ(harness.pull("d", 1).at(0).value, column({4.0}));
}

TEST_F(ReplayOutputsTest, MissingNamesMakeNoPin) {
    expectThrow<Poco::DataException>("Impossible to find one or more ColName(s) in the file", [&] {
        outputs.makeNamed(config, {"a", "x"}, {"missing"});
    });
    expectThrow<Poco::DataException>("Impossible to find one or more CalibColName(s) in the file",
                                     [&] {
                                         outputs.makeNamed(config, {"a"}, {"Gain", "x"});
                                     });
    EXPECT_THAT(harness.outputNames(), IsEmpty());
}

TEST_F(ReplayOutputsTest, UnboundPinsStandInTheOrderOfTheLists) {
    outputs.makeUnbound({"y", "x"}, {"K", "K"});
    EXPECT_THAT(harness.outputNames(), ElementsAre("y", "x", "K", "K"));
    outputs.clear();
    EXPECT_THAT(harness.outputNames(), IsEmpty());
}

TEST_F(ReplayOutputsTest, FindsTheFirstDataPinOfAName) {
    outputs.makeNamed(config, {"b", "a", "b"}, {"Gain"});
    EXPECT_EQ(outputs.findData("b"), 0U);
    EXPECT_EQ(outputs.findData("a"), 1U);
    EXPECT_EQ(outputs.findData("Gain"), std::nullopt);
    fillAndSend();
    EXPECT_EQ(outputs.firstValue(1), 1.0);
}
