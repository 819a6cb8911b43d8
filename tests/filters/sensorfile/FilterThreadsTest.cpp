#include "filters/sensorfile/FilterRecordSensorFile.hpp"
#include "filters/sensorfile/FilterReplaySensorFile.hpp"
#include "sensorfile/ColumnType.hpp"
#include "sensorfile/SensorFileReader.hpp"
#include "tests/filters/Caller.hpp"
#include "tests/support/FilterHarness.hpp"
#include "tests/support/TemporaryFolder.hpp"
#include "tests/support/TestTime.hpp"

#include <gtest/gtest.h>

using Support::column;
using Support::FilterHarness;

namespace {

void writeTenRows(const std::string& file) {
    SensorFile::SensorFileConfig config;
    config.addColumn("a", SensorFile::kDouble);
    config.addColumn("COUNT", SensorFile::kUInt16);
    SensorFile::SensorFileWriter writer;
    writer.open(file, config, /*binary=*/true, /*writeHeaders=*/true);
    for (int i = 0; i < 10; ++i)
        writer.writeRow(std::vector<double>{0.5 * i, 1.0 * i});
    writer.close();
}

}  // namespace

TEST(FilterThreadsTest, RecordingsStayWholeWhileTheyAreSwitchedUnderCalls) {
    const Support::TemporaryFolder folder;
    FilterRecordSensorFile filter("recorder");
    FilterHarness rec(filter);
    rec.set("Binary", true);
    rec.set("Pins Number", 2);
    for (const char* number : {"1", "2"}) {
        rec.set(std::string("ColNames#") + number, std::string("c") + number);
        rec.choose(std::string("ColTypes#") + number, "INT32");
        rec.connect(std::string("input#") + number);
    }
    const Caller caller(filter);
    for (int turn = 0; turn < 50; ++turn) {
        const std::string file = folder.file(std::to_string(turn));
        rec.set("File Name", file);
        rec.set("Record", true);
        for (int i = 0; i < 20; ++i) {
            rec.push("input#2", column({1.0 * i}));
            rec.push("input#1", column({1.0 * i}));
        }
        caller.waitForCalls();
        rec.set("Record", false);
        SensorFile::SensorFileReader reader;
        reader.open(file, /*binary=*/true);
        ASSERT_EQ(reader.getConfig().getColumnCount(), 2U);
        std::vector<double> row(2);
        while (reader.readRow(row))
            ASSERT_LT(row[0], 20.0);
    }
}

TEST(FilterThreadsTest, ReplayIsSwitchedPausedAndReloadedUnderCalls) {
    const Support::TemporaryFolder folder;
    const std::string file = folder.file("a.sf");
    writeTenRows(file);
    const Support::RecordedSleeps sleeps;
    FilterReplaySensorFile filter("player");
    FilterHarness replay(filter);
    replay.set("QuickProcess", true);
    replay.set("Load File", file);
    const Caller caller(filter);
    for (int turn = 0; turn < 50; ++turn) {
        // Every other turn ends by itself, at the end of the file.
        replay.set("AutoReplay", turn % 2 == 0);
        replay.set("Replay", true);
        replay.set("Pause", true);
        replay.set("Pause", false);
        caller.waitForCalls();
        replay.set("Replay", false);
        replay.set("TimeStampColName", turn % 3 == 0 ? "a" : "COUNT");
        replay.trigger("Reload File");
        ASSERT_EQ(replay.outputNames().size(), 2U);
    }
}

TEST(FilterThreadsTest, NothingIsSentOnceTheStopHasReturned) {
    const Support::TemporaryFolder folder;
    const std::string file = folder.file("a.sf");
    writeTenRows(file);
    const Support::RecordedSleeps sleeps;
    FilterReplaySensorFile filter("player");
    FilterHarness replay(filter);
    replay.set("QuickProcess", true);
    replay.set("AutoReplay", true);
    replay.set("Load File", file);
    const Quoril::Core::AbstractOutputPin& pin = *filter.findOutputPin("a");
    const Caller caller(filter);
    for (int turn = 0; turn < 50; ++turn) {
        replay.set("Replay", true);
        caller.waitForCalls();
        replay.set("Replay", false);
        const auto sent = pin.getPushCount();
        // A call that had begun before the stop has to notice it.
        caller.waitForCalls();
        ASSERT_EQ(pin.getPushCount(), sent);
    }
}
