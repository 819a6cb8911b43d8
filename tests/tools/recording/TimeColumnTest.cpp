#include "sensorfile/ColumnType.hpp"
#include "tests/tools/ToolFixture.hpp"
#include "tools/common/UsageException.hpp"
#include "tools/recording/TimeColumn.hpp"

namespace SensorFileTool {
namespace {

using namespace SensorFile;

TimeColumn timeOf(const std::string& name, int type = kDouble) {
    const auto found = findTimeColumns(configOf({{name, type}}));
    EXPECT_EQ(found.size(), 1U) << name;
    return found.empty() ? TimeColumn{} : found[0];
}

TEST(TimeColumnTest, TheNameTellsThatAColumnHoldsTime) {
    for (const char* name : {"TIME", "time", "Timestamp", "T", "stamp", "time_stamp"}) {
        EXPECT_EQ(timeOf(name).getUnit(), "s") << name;
        EXPECT_FALSE(timeOf(name).isUnitKnown) << name;
    }
    for (const char* name : {"TIMER", "X", "", "ACCT", "time2", "s", "ns"})
        EXPECT_TRUE(findTimeColumns(configOf({{name, kDouble}})).empty()) << name;
}

TEST(TimeColumnTest, TheNameMayTellTheUnit) {
    const std::pair<const char*, const char*> units[] = {
        {"Time (s)", "s"},  {"time[ms]", "ms"},
        {"TIME_US", "us"},  {"update_timestamp_ns", "ns"},
        {"t seconds", "s"}, {"Timestamp (ns)", "ns"}};
    for (const auto& [name, unit] : units) {
        EXPECT_EQ(timeOf(name).getUnit(), unit) << name;
        EXPECT_TRUE(timeOf(name).isUnitKnown) << name;
    }
}

TEST(TimeColumnTest, CharactersAndBoolsHoldNoTime) {
    for (const int type : {kUChar, kChar, kBool})
        EXPECT_TRUE(findTimeColumns(configOf({{"TIME", type}})).empty()) << type;
}

TEST(TimeColumnTest, DifferencesOfLargeIntegersAreExact) {
    const auto config = configOf({{"timestamp_ns", kInt64}});
    const TimeColumn time = findTimeColumns(config)[0];
    Row from(config);
    Row to(config);
    from.setBits(0, 1737844329000000001U);
    to.setBits(0, 1737844329000000004U);
    EXPECT_DOUBLE_EQ(time.secondsBetween(from, to), 3e-9);
    EXPECT_DOUBLE_EQ(time.secondsBetween(to, from), -3e-9);
}

TEST(TimeColumnTest, IntegersTakeTheUnitNearestToTheFrequency) {
    const auto config = configOf({{"TIME", kInt64}});
    const Row row(config);
    const std::pair<double, const char*> steps[] = {
        {5.0, "ms"}, {4999.0, "us"}, {5003210.0, "ns"}, {0.01, "s"}, {40.0, "ms"}};
    for (const auto& [step, unit] : steps) {
        TimeColumn time = findTimeColumns(config)[0];
        time.guessUnit(step, 200.0, row);
        EXPECT_EQ(time.getUnit(), unit) << step;
    }
}

TEST(TimeColumnTest, KnownUnitsAndFractionsAreNotGuessed) {
    const auto known = configOf({{"TIME_MS", kInt64}});
    TimeColumn time = findTimeColumns(known)[0];
    time.guessUnit(5000000.0, 200.0, Row(known));
    EXPECT_EQ(time.getUnit(), "ms");
    const auto fractions = configOf({{"TIME", kDouble}});
    time = findTimeColumns(fractions)[0];
    time.guessUnit(5000000.0, 200.0, Row(fractions));
    EXPECT_EQ(time.getUnit(), "s");
}

TEST(TimeColumnTest, WithoutGrowingStampsNothingIsGuessed) {
    const auto config = configOf({{"TIME", kInt64}});
    for (const double step : {0.0, -5.0, std::numeric_limits<double>::quiet_NaN(),
                              std::numeric_limits<double>::infinity()}) {
        TimeColumn time = findTimeColumns(config)[0];
        time.guessUnit(step, 200.0, Row(config));
        EXPECT_EQ(time.getUnit(), "s") << step;
    }
}

TEST(TimeColumnTest, TheUserMayNameColumnAndUnit) {
    const auto config = configOf({{"TIME", kDouble}, {"CLOCK", kInt64}});
    EXPECT_EQ(chooseTimeColumn(config, "", "")->name, "TIME");
    const auto clock = chooseTimeColumn(config, "CLOCK", "us");
    EXPECT_EQ(clock->index, 1U);
    EXPECT_EQ(clock->getUnit(), "us");
    EXPECT_TRUE(clock->isUnitKnown);
    EXPECT_FALSE(chooseTimeColumn(configOf({{"X", kDouble}}), "", ""));
    EXPECT_THROW_MESSAGE((void)chooseTimeColumn(config, "clock", ""), UsageException,
                         "--time: there is no column 'clock'");
    EXPECT_THROW_MESSAGE((void)chooseTimeColumn(config, "", "h"), UsageException,
                         "--time-unit: 'h' is not s, ms, us or ns");
}

}  // namespace
}  // namespace SensorFileTool
