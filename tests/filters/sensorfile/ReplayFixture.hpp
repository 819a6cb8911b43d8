#pragma once

#include "filters/sensorfile/FilterReplaySensorFile.hpp"
#include "sensorfile/ColumnType.hpp"
#include "sensorfile/SensorFileWriter.hpp"
#include "tests/support/ExpectThrow.hpp"
#include "tests/support/FilterHarness.hpp"
#include "tests/support/TemporaryFolder.hpp"
#include "tests/support/TestTime.hpp"

#include <string>
#include <vector>

#include <Poco/DateTime.h>
#include <gmock/gmock.h>

/// A replay filter, files for it, and words to tell what happens to both. Nobody sleeps.
class ReplayFixture : public testing::Test {
 protected:
    using Rows = std::vector<std::vector<double>>;
    using Times = std::vector<double>;

    /// Describes the next file: columns of doubles.
    void columns(const std::vector<std::string>& names, double frequency = 100.0) {
        config = SensorFile::SensorFileConfig();
        config.setSampleFrequency(frequency);
        config.setDoublePrecision(9);
        for (const std::string& name : names)
            config.addColumn(name, SensorFile::kDouble);
    }

    void write(const Rows& rows, bool binary = true) {
        SensorFile::SensorFileWriter writer;
        writer.open(file, config, binary, /*writeHeaders=*/true);
        for (const auto& row : rows)
            writer.writeRow(row);
        writer.close();
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

    Support::TemporaryFolder folder;
    std::string file = folder.file("a.sf");
    SensorFile::SensorFileConfig config;
    FilterReplaySensorFile filter{"player"};
    Support::FilterHarness replay{filter};
    Support::RecordedSleeps sleeps;
};
