#include "filters/kivra2/FilterRecordKivra2Format.hpp"
#include "filters/kivra2/FilterReplayKivra2Format.hpp"
#include "filters/sensorfile/FilterRecordSensorFile.hpp"
#include "filters/sensorfile/FilterReplaySensorFile.hpp"
#include "tests/support/AllocationCount.hpp"
#include "tests/support/FilterHarness.hpp"
#include "tests/support/TemporaryFolder.hpp"

#include <string>

#include <gtest/gtest.h>

using Support::AllocationCount;
using Support::FilterHarness;

namespace {

constexpr int kWarmRows = 5000;
constexpr int kRows = 20000;

class RowAllocationTest : public testing::TestWithParam<bool> {
 protected:
    // Records rows of a time stamp and two pins; tells the allocations of the last kRows rows.
    std::size_t recordRows() {
        FilterRecordSensorFile filter("recorder");
        FilterHarness rec(filter);
        rec.set("Binary", GetParam());
        rec.set("Save Timestamp", true);
        rec.set("TimeStampColName", "COUNT");
        rec.choose("TimeStampColType", "UINT32");
        rec.set("Pins Number", 2);
        rec.set("ColNames#1", "ACCX ACCY ACCZ");
        rec.choose("ColTypes#1", "DOUBLE");
        rec.set("ColNames#2", "INFO");
        rec.choose("ColTypes#2", "UINT16");
        rec.set("File Name", file);
        rec.set("Record", true);
        Eigen::MatrixXd time = Support::column({0.0});
        const Eigen::MatrixXd acc = Support::column({0.125, -9.81, 3.0});
        const Eigen::MatrixXd info = Support::column({7.0});
        const std::string timePin = "TimeStampPin";
        const std::string accPin = "input#1";
        const std::string infoPin = "input#2";
        const auto recordRow = [&] {
            time(0, 0) += 1.0;
            rec.push(timePin, time);
            rec.push(accPin, acc);
            rec.push(infoPin, info);
            filter.process();
        };
        for (int i = 0; i < kWarmRows; ++i)
            recordRow();
        const AllocationCount allocations;
        for (int i = 0; i < kRows; ++i)
            recordRow();
        return allocations.get();
    }

    Support::TemporaryFolder folder;
    std::string file = folder.file("rows.sf");
};

}  // namespace

TEST_P(RowAllocationTest, RecordedRowTakesNone) {
    EXPECT_EQ(recordRows(), 0U);
}

TEST_P(RowAllocationTest, ReplayedRowTakesNone) {
    recordRows();
    FilterReplaySensorFile filter("player");
    FilterHarness replay(filter);
    replay.set("Binary", GetParam());
    replay.set("QuickProcess", true);
    replay.set("Load File", file);
    replay.watch();
    replay.set("Replay", true);
    replay.step(kWarmRows);
    std::size_t count = 0;
    {
        const AllocationCount allocations;
        replay.step(kRows);
        count = allocations.get();
    }
    // A text value that lies across two blocks of the file is read by the stream, which may
    // allocate: some few times a megabyte.
    EXPECT_LE(count, GetParam() ? 0U : kRows / 1000U);
    EXPECT_TRUE(replay.get<bool>("Replay"));
    EXPECT_EQ(replay.pull("COUNT").back().value(0, 0), kWarmRows + kRows);
}

class Kivra2RowAllocationTest : public testing::TestWithParam<bool> {
 protected:
    // Records rows of a unit; tells the allocations of the last kRows rows.
    std::size_t recordRows() {
        FilterRecordKivra2Format filter("recorder");
        FilterHarness rec(filter);
        rec.set("Save Gyro", GetParam());
        rec.set("File Name", file);
        rec.set("Record", true);
        const std::string names[] = {"3a", "3m", "Button", "FrameNumber", "3g"};
        Eigen::MatrixXd frame = Support::matrix({{0.0, 0.0, 100.0}});
        const Eigen::MatrixXd axes = Support::matrix({{1.0, -2.0, 3.0}});
        const Eigen::MatrixXd button = Support::matrix({{7.0}});
        const auto recordRow = [&] {
            frame(0, 0) += 1.0;
            rec.push(names[0], axes);
            rec.push(names[1], axes);
            rec.push(names[2], button);
            rec.push(names[3], frame);
            if (GetParam()) rec.push(names[4], axes);
            filter.process();
        };
        for (int i = 0; i < kWarmRows; ++i)
            recordRow();
        const AllocationCount allocations;
        for (int i = 0; i < kRows; ++i)
            recordRow();
        return allocations.get();
    }

    Support::TemporaryFolder folder;
    std::string file = folder.file("rows.sf");
};

TEST_P(Kivra2RowAllocationTest, RecordedRowTakesNone) {
    EXPECT_EQ(recordRows(), 0U);
}

TEST_P(Kivra2RowAllocationTest, ReplayedRowTakesNone) {
    recordRows();
    FilterReplayKivra2Format filter("player");
    FilterHarness replay(filter);
    replay.set("Load File", file);
    replay.set("SampleDelay", 0);
    replay.set("Force Ticks", true);
    replay.watch();
    replay.set("Replay", true);
    replay.step(kWarmRows);
    std::size_t count = 0;
    {
        const AllocationCount allocations;
        replay.step(kRows);
        count = allocations.get();
    }
    EXPECT_EQ(count, 0U);
    EXPECT_TRUE(replay.get<bool>("Replay"));
    EXPECT_EQ(replay.pull("FrameNumber").back().value(0, 0), kWarmRows + kRows);
}

INSTANTIATE_TEST_SUITE_P(Units, Kivra2RowAllocationTest, testing::Bool(),
                         [](const auto& unit) { return unit.param ? "WithGyro" : "WithoutGyro"; });

TEST(AllocationCountTest, SeesWhatNewAndEigenTake) {
    const AllocationCount allocations;
    const auto number = std::make_unique<int>(1);
    EXPECT_EQ(allocations.get(), 1U);
    const Eigen::MatrixXd matrix(3 + *number, 1);
    EXPECT_EQ(allocations.get(), 2U);
}

INSTANTIATE_TEST_SUITE_P(Encodings, RowAllocationTest, testing::Bool(),
                         [](const auto& encoding) { return encoding.param ? "Binary" : "Text"; });
