#include "sensorfile/ColumnType.hpp"
#include "tests/tools/ToolFixture.hpp"
#include "tools/common/UsageException.hpp"
#include "tools/recording/CounterColumn.hpp"

namespace SensorFileTool {
namespace {

using namespace SensorFile;

CounterColumn counterOf(int type) {
    const auto found = findCounterColumns(configOf({{"COUNT", type}}));
    EXPECT_EQ(found.size(), 1U);
    return found.empty() ? CounterColumn{} : found[0];
}

TEST(CounterColumnTest, CountersAreFoundByName) {
    const auto found = findCounterColumns(configOf({{"TIME", kDouble},
                                                    {"Count", kUInt16},
                                                    {"COUNTX", kUInt16},
                                                    {"frame_number", kInt64},
                                                    {"SEQ", kUInt8}}));
    ASSERT_EQ(found.size(), 3U);
    EXPECT_EQ(found[0].index, 1U);
    EXPECT_EQ(found[0].name, "Count");
    EXPECT_EQ(found[0].bitCount, 16);
    EXPECT_EQ(found[1].bitCount, 64);
    EXPECT_EQ(found[2].bitCount, 8);
}

TEST(CounterColumnTest, OnlyIntegersCount) {
    for (const int type : {kFloat, kDouble, kBool, kUChar, kChar})
        EXPECT_TRUE(findCounterColumns(configOf({{"COUNT", type}})).empty()) << type;
}

TEST(CounterColumnTest, TheUserMayNameAnyColumnOfIntegers) {
    const auto config = configOf({{"COUNT", kUInt16}, {"N", kUInt8}, {"X", kDouble}});
    const auto found = chooseCounterColumns(config, "N");
    ASSERT_EQ(found.size(), 1U);
    EXPECT_EQ(found[0].index, 1U);
    EXPECT_EQ(chooseCounterColumns(config, "").size(), 1U);
    EXPECT_THROW_MESSAGE((void)chooseCounterColumns(config, "n"), UsageException,
                         "--counter: there is no column 'n'");
    EXPECT_THROW_MESSAGE((void)chooseCounterColumns(config, "X"), UsageException,
                         "--counter: the column 'X' holds no integers");
}

TEST(CounterColumnTest, StepsAreOneUnlessNumbersAreMissing) {
    const CounterColumn counter = counterOf(kUInt16);
    EXPECT_EQ(counter.stepBetween(7, 8).missing, 0U);
    EXPECT_FALSE(counter.stepBetween(7, 8).isRepeated);
    EXPECT_EQ(counter.stepBetween(7, 10).missing, 2U);
    EXPECT_TRUE(counter.stepBetween(7, 7).isRepeated);
    EXPECT_TRUE(counter.stepBetween(7, 6).isBackward);
}

TEST(CounterColumnTest, CountersBeginAgainAtZeroBehindTheLargestNumber) {
    EXPECT_EQ(counterOf(kUInt8).stepBetween(255, 0).missing, 0U);
    EXPECT_EQ(counterOf(kUInt16).stepBetween(65535, 0).missing, 0U);
    EXPECT_EQ(counterOf(kUInt16).stepBetween(65530, 1).missing, 6U);
    EXPECT_EQ(counterOf(kUInt32).stepBetween(4294967295U, 0).missing, 0U);
    EXPECT_EQ(counterOf(kUInt64).stepBetween(~std::uint64_t{0}, 0).missing, 0U);
}

TEST(CounterColumnTest, MoreThanHalfTheRangeIsBackward) {
    const CounterColumn counter = counterOf(kUInt8);
    EXPECT_EQ(counter.stepBetween(0, 127).missing, 126U);
    EXPECT_FALSE(counter.stepBetween(0, 127).isBackward);
    EXPECT_TRUE(counter.stepBetween(0, 128).isBackward);
}

TEST(CounterColumnTest, SignedCountersGoOnBelowZero) {
    const auto config = configOf({{"COUNT", kInt16}});
    const CounterColumn counter = findCounterColumns(config)[0];
    Row row(config);
    row.setValue(0, 32767.0);
    const std::uint64_t last = counter.numberOf(row);
    row.setValue(0, -32768.0);
    EXPECT_EQ(counter.stepBetween(last, counter.numberOf(row)).missing, 0U);
}

TEST(CounterColumnTest, NumbersOf64BitsAreExact) {
    const auto config = configOf({{"COUNT", kUInt64}});
    Row row(config);
    row.setBits(0, 9007199254740993U);
    EXPECT_EQ(findCounterColumns(config)[0].numberOf(row), 9007199254740993U);
}

}  // namespace
}  // namespace SensorFileTool
