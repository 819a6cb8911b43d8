#include "filters/kivra2/FilterRecordKivra2Format.hpp"
#include "filters/kivra2/FilterReplayKivra2Format.hpp"
#include "sensorfile/Kivra2Layout.hpp"
#include "sensorfile/SensorFileReader.hpp"
#include "sensorfile/SensorFileWriter.hpp"
#include "tests/filters/Caller.hpp"
#include "tests/support/FilterHarness.hpp"
#include "tests/support/TemporaryFolder.hpp"
#include "tests/support/TestTime.hpp"

#include <string>
#include <vector>

#include <gtest/gtest.h>

using Support::FilterHarness;
using Support::matrix;

namespace {

constexpr int kTurns = 50;

void writeTenRows(const std::string& file, bool hasGyro) {
    SensorFile::SensorFileConfig config;
    SensorFile::Kivra2::addColumns(config);
    if (hasGyro) SensorFile::Kivra2::addGyroColumns(config);
    SensorFile::SensorFileWriter writer;
    writer.open(file, config, /*binary=*/true, /*writeHeaders=*/true);
    for (int i = 0; i < 10; ++i)
        writer.writeRow(std::vector<double>(config.getColumnCount(), 1.0 * i));
    writer.close();
}

}  // namespace

TEST(Kivra2ThreadsTest, RecordingsStayWholeWhileTheyAreSwitchedUnderCalls) {
    const Support::TemporaryFolder folder;
    FilterRecordKivra2Format filter("recorder");
    FilterHarness rec(filter);
    for (const char* name : {"3a", "3m", "Button"})
        rec.connect(name);
    const Caller caller(filter);
    for (int turn = 0; turn < kTurns; ++turn) {
        const bool hasGyro = turn % 2 == 1;
        rec.set("Save Gyro", hasGyro);
        if (hasGyro) rec.connect("3g");  // pins are connected between recordings
        const std::string file = folder.file(std::to_string(turn));
        rec.set("File Name", file);
        rec.set("Record", true);
        for (int i = 1; i <= 20; ++i) {
            // The last of these completes a row.
            rec.push("3a", matrix({{1.0, 2.0, 3.0}}));
            rec.push("Button", matrix({{8.0}}));
            if (hasGyro) rec.push("3g", matrix({{9.0, 9.0, 9.0}}));
            rec.push("3m", matrix({{4.0, 5.0, 6.0}}));
            if (i == 10) rec.set("Pause", true);
            if (i == 12) rec.set("Pause", false);
        }
        if (turn % 3 == 0) caller.waitForCalls();
        rec.set("Record", false);
        if (Support::readBytes(file).empty()) continue;
        SensorFile::SensorFileReader reader;
        reader.open(file, /*binary=*/true);
        ASSERT_EQ(reader.getConfig().getColumnCount(), hasGyro ? 11U : 8U);
        std::vector<double> row(reader.getConfig().getColumnCount());
        while (reader.readRow(row)) {
            ASSERT_EQ(row[0], 0.0);
            ASSERT_EQ(row[4], 4.0);
            ASSERT_EQ(row.back(), 8.0);
        }
    }
}

TEST(Kivra2ThreadsTest, ReplayIsSwitchedPausedAndReloadedUnderCalls) {
    const Support::TemporaryFolder folder;
    writeTenRows(folder.file("0"), /*hasGyro=*/false);
    writeTenRows(folder.file("1"), /*hasGyro=*/true);
    const Support::RecordedSleeps sleeps;
    FilterReplayKivra2Format filter("player");
    FilterHarness replay(filter);
    replay.set("Load File", folder.file("0"));
    const Caller caller(filter);
    for (int turn = 0; turn < kTurns; ++turn) {
        // Every other turn ends by itself, at the end of the file.
        replay.set("AutoReplay", turn % 2 == 0);
        replay.set("Replay", true);
        replay.set("Pause", true);
        replay.set("Pause", false);
        replay.set("Keep file frequency", turn % 3 == 0);
        caller.waitForCalls();
        if (turn % 5 == 0) replay.set("Replay", false);
        replay.set("Load File", folder.file(std::to_string(turn % 2)));
        ASSERT_EQ(replay.outputNames().size(), turn % 2 == 0 ? 8U : 11U);
        ASSERT_FALSE(replay.get<bool>("Replay"));
    }
}

TEST(Kivra2ThreadsTest, NothingIsSentOnceTheStopHasReturned) {
    const Support::TemporaryFolder folder;
    const std::string file = folder.file("a.sf");
    writeTenRows(file, /*hasGyro=*/false);
    const Support::RecordedSleeps sleeps;
    FilterReplayKivra2Format filter("player");
    FilterHarness replay(filter);
    replay.set("Load File", file);
    replay.set("AutoReplay", true);
    const Quoril::Core::AbstractOutputPin& pin = *filter.findOutputPin("3aGain");
    const Caller caller(filter);
    for (int turn = 0; turn < kTurns; ++turn) {
        replay.set("Replay", true);
        caller.waitForCalls();
        replay.set("Replay", false);
        const auto sent = pin.getPushCount();
        // A call that had begun before the stop has to notice it.
        caller.waitForCalls();
        ASSERT_EQ(pin.getPushCount(), sent);
    }
}
