#include "sensorfile/ColumnType.hpp"
#include "tests/tools/ToolFixture.hpp"
#include "tools/plot/PlotPanels.hpp"

#include <numeric>

namespace SensorFileTool {
namespace {

using namespace SensorFile;
using testing::ElementsAre;

/// "TITLE: 0 1 2" of each panel.
std::vector<std::string> panelsOf(const SensorFileConfig& config) {
    std::vector<std::size_t> columns(config.getColumnCount());
    std::iota(columns.begin(), columns.end(), std::size_t{0});
    std::vector<std::string> texts;
    for (const PlotPanel& panel : groupColumns(config, columns)) {
        texts.push_back(panel.title + ":");
        for (const std::size_t column : panel.columns)
            texts.back() += " " + std::to_string(column);
    }
    return texts;
}

std::vector<std::string> panelsOf(const std::vector<std::string>& names) {
    SensorFileConfig config;
    for (const std::string& name : names)
        config.addColumn(name, kDouble);
    return panelsOf(config);
}

TEST(PlotPanelsTest, AxesOfASensorShareAPanel) {
    EXPECT_THAT(panelsOf({"ACCX", "ACCY", "ACCZ", "GYRX", "GYRY", "GYRZ"}),
                ElementsAre("ACC: 0 1 2", "GYR: 3 4 5"));
    EXPECT_THAT(panelsOf({"acc_x", "acc_y", "gyr x", "gyr y"}),
                ElementsAre("acc: 0 1", "gyr: 2 3"));
}

TEST(PlotPanelsTest, PanelsAreInTheOrderOfTheirFirstColumns) {
    EXPECT_THAT(panelsOf({"MX", "PRESSURE", "AX", "MY", "AY"}),
                ElementsAre("M: 0 3", "PRESSURE: 1", "A: 2 4"));
}

TEST(PlotPanelsTest, NumbersAtTheEndAreNoDifference) {
    EXPECT_THAT(panelsOf({"TEMP1", "TEMP2", "TEMP10", "Q0"}), ElementsAre("TEMP: 0 1 2", "Q0: 3"));
}

TEST(PlotPanelsTest, UnitsAreKept) {
    EXPECT_THAT(panelsOf({"Gyroscope X (deg/s)", "Gyroscope Y (deg/s)", "Gyroscope X (rad/s)",
                          "Speed [m/s]"}),
                ElementsAre("Gyroscope (deg/s): 0 1", "Gyroscope X (rad/s): 2", "Speed [m/s]: 3"));
}

TEST(PlotPanelsTest, AxesAloneAreToldByAllTheirNames) {
    EXPECT_THAT(panelsOf({"x", "y", "z", "PHI"}), ElementsAre("x ... z: 0 1 2", "PHI: 3"));
}

TEST(PlotPanelsTest, NamesThatOnlyEndLikeAxesStayWhole) {
    EXPECT_THAT(panelsOf({"MAX", "QUALITY"}), ElementsAre("MAX: 0", "QUALITY: 1"));
}

TEST(PlotPanelsTest, OddNamesHavePanelsToo) {
    EXPECT_THAT(panelsOf({"", "()", "(X)", ")", "_"}),
                ElementsAre(": 0", "(): 1", "(X): 2", "): 3", "_: 4"));
    EXPECT_THAT(panelsOf({"17", "18"}), ElementsAre("17 ... 18: 0 1"));
}

TEST(PlotPanelsTest, CountersAndStatesComeLast) {
    EXPECT_THAT(panelsOf(configOf({{"COUNT", kUInt16},
                                   {"INFO", kUInt8},
                                   {"TIME", kDouble},
                                   {"ON", kBool},
                                   {"ACCX", kInt16},
                                   {"ACCY", kInt16}})),
                ElementsAre("ACC: 4 5", "COUNT: 0", "INFO: 1", "TIME: 2", "ON: 3"));
}

TEST(PlotPanelsTest, OnlyChosenColumnsHavePanels) {
    const auto config = configOf({{"AX", kDouble}, {"AY", kDouble}, {"B", kDouble}});
    const auto panels = groupColumns(config, {2, 1});
    ASSERT_EQ(panels.size(), 2U);
    EXPECT_EQ(panels[0].title, "B");
    EXPECT_EQ(panels[1].title, "AY");
    EXPECT_TRUE(groupColumns(config, {}).empty());
}

}  // namespace
}  // namespace SensorFileTool
