#pragma once

#include "filters/kivra2/FilterReplayKivra2Format.hpp"
#include "sensorfile/Kivra2Layout.hpp"
#include "sensorfile/SensorFileWriter.hpp"
#include "tests/support/ExpectThrow.hpp"
#include "tests/support/FilterHarness.hpp"
#include "tests/support/TemporaryFolder.hpp"
#include "tests/support/TestTime.hpp"

#include <string>
#include <vector>

#include <Poco/DateTime.h>
#include <gmock/gmock.h>

/// A replay filter of an inertial unit's recordings, files for it, and words to tell what happens
/// to both. Nobody sleeps.
class Kivra2ReplayFixture : public testing::Test {
 protected:
    using Row = std::vector<double>;
    using Rows = std::vector<Row>;
    using Times = std::vector<double>;

    Kivra2ReplayFixture() { describe(); }

    /// Describes the next file: no calibration records yet.
    void describe(double frequency = 100.0, bool hasGyro = false) {
        config = SensorFile::SensorFileConfig();
        config.setSampleFrequency(frequency);
        SensorFile::Kivra2::addColumns(config);
        if (hasGyro) SensorFile::Kivra2::addGyroColumns(config);
    }
    /// The same for a unit of the first generation.
    void describeOld(bool hasGyro = false) {
        config = SensorFile::SensorFileConfig();
        config.setSampleFrequency(100.0);
        config.setCalibFormat(1);
        config.addColumn("COUNT", 4);
        for (const char* name : {"ACCX", "ACCY", "ACCZ", "MAGX", "MAGY", "MAGZ"})
            config.addColumn(name, 5);
        for (const char* name : {"GYRX", "GYRY", "GYRZ"})
            if (hasGyro) config.addColumn(name, 5);
        config.addColumn("INFO", 10);
    }
    void addRecords(std::size_t count) {
        const char* const names[] = {"AccGain",   "AccOffset", "MagGain",
                                     "MagOffset", "GyrGain",   "GyrOffset"};
        for (std::size_t i = 0; i < count; ++i) {
            const auto value = static_cast<double>(i + 1);
            config.addCalibData(i < 6 ? names[i] : "More",
                                Eigen::MatrixXd::Constant(i % 2 == 0 ? 3 : 1, 3, value));
        }
    }

    void write(const Rows& rows) {
        SensorFile::SensorFileWriter writer;
        writer.open(file, config, /*binary=*/true, /*writeHeaders=*/true);
        for (const auto& row : rows)
            writer.writeRow(row);
        writer.close();
    }
    /// Rows of which only the counters differ.
    void writeCounters(const std::vector<int>& counters) {
        Rows rows;
        for (const int counter : counters) {
            rows.emplace_back(config.getColumnCount(), 1.0);
            rows.back().front() = counter;
        }
        write(rows);
    }

    void load() { replay.set("Load File", file); }
    /// Loads, watches the pins and starts.
    void start() {
        load();
        replay.watch();
        replay.set("Replay", true);
    }
    void stop() { replay.set("Replay", false); }
    [[nodiscard]] bool isReplaying() const { return replay.get<bool>("Replay"); }

    /// The counters of the rows that were sent since the last call.
    std::vector<int> pullCounters() {
        std::vector<int> counters;
        for (const auto& frame : replay.pullValues("FrameNumber"))
            counters.push_back(static_cast<int>(frame.at(0)));
        return counters;
    }

    Support::TemporaryFolder folder;
    std::string file = folder.file("a.sf");
    SensorFile::SensorFileConfig config;
    FilterReplayKivra2Format filter{"player"};
    Support::FilterHarness replay{filter};
    Support::RecordedSleeps sleeps;
};
