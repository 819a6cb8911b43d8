#include "sensorfile/ByteOrder.hpp"
#include "sensorfile/ColumnType.hpp"
#include "tests/sensorfile/TestSupport.hpp"
#include "tools/check/ColumnRule.hpp"

#include <algorithm>
#include <cstdint>
#include <limits>
#include <string>
#include <tuple>
#include <vector>

#include <gtest/gtest.h>
#include <rapidcheck/gtest.h>

namespace SensorFileTool {
namespace {

using Found = std::vector<std::tuple<DefectCode, std::int64_t, std::int64_t>>;

/// Code, offset and row of everything that is found in a column, which is given in pieces.
template <typename T>
Found check(const SensorFile::SensorFileConfig& config, const std::vector<T>& values,
            std::size_t piece, const ColumnRoles& roles) {
    constexpr std::size_t kRowSize = sizeof(T) + 3;
    std::string bytes(values.size() * kRowSize, '\x55');
    for (std::size_t i = 0; i < values.size(); ++i)
        SensorFile::storeBigEndian(bytes.data() + i * kRowSize, values[i]);
    DefectList defects(1000);
    const auto rules = makeColumnRules(config, /*isBinary=*/true, roles, defects);
    for (std::size_t i = 0; i < values.size(); i += piece) {
        const std::size_t count = std::min(piece, values.size() - i);
        for (const auto& rule : rules)
            rule->scan({bytes.data() + i * kRowSize, count, kRowSize,
                        static_cast<std::int64_t>(i * kRowSize), static_cast<std::int64_t>(i),
                        /*isBigEndian=*/true});
    }
    for (const auto& rule : rules)
        rule->finish();
    defects.sort();
    Found found;
    for (const Defect& defect : defects.getKept()) {
        EXPECT_EQ(defect.place.offset, defect.place.row * static_cast<std::int64_t>(kRowSize));
        found.emplace_back(defect.code, defect.place.offset, defect.place.row);
    }
    return found;
}

ColumnRoles asCounter(int bitCount) {
    return {{CounterColumn{0, "COUNT", bitCount}}, std::nullopt};
}

RC_GTEST_PROP(ColumnRuleTest, CountersAreJudgedAsOneStepAfterTheOther, ()) {
    const auto values = *rc::gen::container<std::vector<std::uint8_t>>(
        rc::gen::oneOf(rc::gen::arbitrary<std::uint8_t>(),
                       rc::gen::elementOf(std::vector<std::uint8_t>{0, 1, 2, 254, 255})));
    const auto piece = *rc::gen::inRange<std::size_t>(1, 10);
    const auto config = SensorFile::configOf({{"COUNT", SensorFile::kUInt8}});
    Found expected;
    for (std::size_t i = 1; i < values.size(); ++i) {
        const int from = values[i - 1];
        const int to = values[i];
        const int step = (to - from) & 0xff;
        const auto row = static_cast<std::int64_t>(i);
        if (step == 1) continue;
        DefectCode code = DefectCode::kCounterJump;
        if (step == 0)
            code = DefectCode::kCounterRepeat;
        else if (step > 127)
            code = to == 0 ? DefectCode::kCounterRestart : DefectCode::kCounterBackward;
        else if (to < from)
            code = DefectCode::kCounterWrap;
        expected.emplace_back(code, row * 4, row);
    }
    RC_ASSERT(check(config, values, piece, asCounter(8)) == expected);
}

RC_GTEST_PROP(ColumnRuleTest, TimeStampsAreJudgedAsOneAfterTheOther, ()) {
    const auto values = *rc::gen::container<std::vector<double>>(
        rc::gen::map(rc::gen::inRange(-4, 5), [](int i) { return i * 0.25; }));
    const auto piece = *rc::gen::inRange<std::size_t>(1, 10);
    const auto config = SensorFile::configOf({{"TIME", SensorFile::kDouble}});
    Found expected;
    for (std::size_t i = 1; i < values.size(); ++i) {
        const auto row = static_cast<std::int64_t>(i);
        if (values[i] == values[i - 1])
            expected.emplace_back(DefectCode::kTimeRepeat, row * 11, row);
        if (values[i] < values[i - 1])
            expected.emplace_back(DefectCode::kTimeBackward, row * 11, row);
    }
    RC_ASSERT(check(config, values, piece, {{}, TimeColumn{0, "TIME", 1.0, true}}) == expected);
}

template <typename T>
Found plainLimits(const std::vector<T>& values) {
    Found expected;
    const auto isLimit = [](T value) {
        return value == std::numeric_limits<T>::max() ||
               (std::is_signed_v<T> && value == std::numeric_limits<T>::min());
    };
    for (std::size_t i = 0; i < values.size();) {
        std::size_t end = i;
        while (end < values.size() && values[end] == values[i])
            ++end;
        const auto row = static_cast<std::int64_t>(i);
        if (isLimit(values[i]))
            expected.emplace_back(end - i < 3 ? DefectCode::kAtLimit : DefectCode::kClipped,
                                  row * static_cast<std::int64_t>(sizeof(T) + 3), row);
        i = end;
    }
    return expected;
}

template <typename T>
void expectLimits(int typeCode) {
    const T min = std::numeric_limits<T>::min();
    const T max = std::numeric_limits<T>::max();
    const auto values = *rc::gen::container<std::vector<T>>(
        rc::gen::element(min, max, max, static_cast<T>(min + 1), static_cast<T>(max - 1), T{}));
    const auto piece = *rc::gen::inRange<std::size_t>(1, 10);
    RC_ASSERT(check(SensorFile::configOf({{"X", typeCode}}), values, piece, {}) ==
              plainLimits(values));
}

RC_GTEST_PROP(ColumnRuleTest, RunsAtTheLimitsAreThoseFoundThePlainWay, ()) {
    expectLimits<std::int8_t>(SensorFile::kInt8);
    expectLimits<std::uint8_t>(SensorFile::kUInt8);
    expectLimits<std::int16_t>(SensorFile::kInt16);
    expectLimits<std::uint16_t>(SensorFile::kUShort);
    expectLimits<std::int32_t>(SensorFile::kInt32);
    expectLimits<std::uint32_t>(SensorFile::kUInt32);
    expectLimits<std::int64_t>(SensorFile::kInt64);
    expectLimits<std::uint64_t>(SensorFile::kUInt64);
}

TEST(ColumnRuleTest, LittleEndianValuesAreTakenAsSuch) {
    const std::string bytes("\xff\x7f\x7f\xff", 4);
    DefectList defects(10);
    const auto config = SensorFile::configOf({{"X", SensorFile::kInt16}});
    const auto rules = makeColumnRules(config, true, {}, defects);
    rules.front()->scan({bytes.data(), 2, 2, 0, 0, /*isBigEndian=*/false});
    rules.front()->finish();
    ASSERT_EQ(defects.getKept().size(), 1U);
    EXPECT_EQ(defects.getKept().front().place.row, 0);
}

TEST(ColumnRuleTest, CountersAndTimeStampsTellWhetherZeroCanFollow) {
    const auto config = SensorFile::configOf({{"COUNT", SensorFile::kUInt16}});
    DefectList defects(10);
    const auto rules = makeColumnRules(config, true, asCounter(16), defects);
    ColumnRule& counter = *rules.front();
    EXPECT_TRUE(counter.canBeZero());
    counter.take(0, 0, {});
    EXPECT_TRUE(counter.canBeZero());  // it may not count at all
    counter.take(1, 0, {});
    EXPECT_FALSE(counter.canBeZero());
    counter.take(65535, 0, {});
    EXPECT_TRUE(counter.canBeZero());
    counter.take(0, 0, {});
    EXPECT_FALSE(counter.canBeZero());
    counter.interrupt();
    EXPECT_TRUE(counter.canBeZero());
}

TEST(ColumnRuleTest, InterruptedCountersBeginAnew) {
    const auto config = SensorFile::configOf({{"COUNT", SensorFile::kUInt16}});
    DefectList defects(10);
    const auto rules = makeColumnRules(config, true, asCounter(16), defects);
    rules.front()->take(1, 0, {});
    rules.front()->interrupt();
    rules.front()->take(9, 0, {});
    EXPECT_TRUE(defects.listCodes().empty());
    rules.front()->take(9, 0, {});
    EXPECT_EQ(defects.count(DefectCode::kCounterRepeat), 1U);
}

TEST(DefectListTest, KeepsTheFirstOfEachCodeAndCountsAll) {
    DefectList defects(2);
    int described = 0;
    const auto describe = [&described] { return std::to_string(++described); };
    for (std::int64_t i = 5; i > 0; --i)
        defects.add(DefectCode::kBadField, {i}, "X", describe);
    defects.add(DefectCode::kAtLimit, {0}, "X", describe);
    defects.sort();
    EXPECT_EQ(described, 3);
    EXPECT_EQ(defects.count(DefectCode::kBadField), 5U);
    EXPECT_EQ(defects.countKept(DefectCode::kBadField), 2U);
    EXPECT_EQ(defects.count(Severity::kError), 5U);
    EXPECT_EQ(defects.count(Severity::kNote), 1U);
    EXPECT_EQ(defects.countStructure(), 5U);
    EXPECT_EQ(defects.getKept().front().place.offset, 0);
    EXPECT_EQ(defects.listCodes(), (std::vector{DefectCode::kBadField, DefectCode::kAtLimit}));
}

TEST(DefectListTest, KeepsABoundedNumberInAll) {
    DefectList defects(DefectList::kMaxKept * 2);
    for (std::size_t i = 0; i < DefectList::kMaxKept + 5; ++i)
        defects.add(DefectCode::kBadField, {}, "", [] { return std::string(); });
    EXPECT_EQ(defects.getKept().size(), DefectList::kMaxKept);
    EXPECT_EQ(defects.count(DefectCode::kBadField), DefectList::kMaxKept + 5);
}

}  // namespace
}  // namespace SensorFileTool
