#pragma once

#include "host/Flow.hpp"
#include "host/LayoutManager.hpp"
#include "host/PluginLoader.hpp"
#include "sensorfile/SensorFileReader.hpp"
#include "tests/host/TestFilters.hpp"
#include "tests/support/FilterHarness.hpp"
#include "tests/support/TemporaryFolder.hpp"

#include <cstddef>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include <gmock/gmock.h>

/// The built module in the host, beside test filters that send and keep numbers.
class ModuleFixture : public testing::Test {
 protected:
    using Harness = Support::FilterHarness;
    using Rows = std::vector<std::vector<double>>;

    ModuleFixture() { loader.load(MODULE_FILE); }

    static void useMaximumPace(Quoril::Core::Flow& flow) {
        flow.setPacing({.mode = Quoril::Core::Pacing::Mode::kMaximum});
    }

    static Quoril::Core::Filter& addRecorder(Quoril::Core::Flow& flow,
                                             Quoril::Core::LayoutManager& layout) {
        return flow.addFilter("FilterRecordSensorFile", "recorder", layout);
    }
    static Quoril::Core::Filter& addPlayer(Quoril::Core::Flow& flow,
                                           Quoril::Core::LayoutManager& layout) {
        return flow.addFilter("FilterReplaySensorFile", "player", layout);
    }

    /// A source of the numbers 0, 1, 2, ... on two pins, "output" and "second".
    static Quoril::Core::TestSource& addSource(Quoril::Core::Flow& flow,
                                               Quoril::Core::LayoutManager& layout, int rowCount) {
        auto& source = dynamic_cast<Quoril::Core::TestSource&>(
            flow.addFilter(Quoril::Core::TestSource::kClassName, "source", layout));
        source.addOutput("second");
        source.rowCount = rowCount;
        return source;
    }

    /// Gives a recorder the columns "COUNT" and "VALUE" and connects them to a source.
    static void connectRecorder(Quoril::Core::Flow& flow, Quoril::Core::TestSource& source,
                                Quoril::Core::Filter& recorder) {
        Harness rec(recorder);
        rec.set("Pins Number", 2);
        rec.set("ColNames#1", "COUNT");
        rec.choose("ColTypes#1", "UINT32");
        rec.set("ColNames#2", "VALUE");
        rec.choose("ColTypes#2", "DOUBLE");
        flow.connect(*source.outputs.at(0), rec.input("input#1"));
        flow.connect(*source.outputs.at(1), rec.input("input#2"));
    }

    static void startRecording(Quoril::Core::Filter& recorder, const std::string& file,
                               bool binary) {
        Harness rec(recorder);
        rec.set("Binary", binary);
        rec.set("File Name", file);
        rec.set("Record", true);
    }

    /// Gives a player a file to replay without sleeps.
    static void loadPlayer(Quoril::Core::Filter& player, const std::string& file, bool binary) {
        Harness replay(player);
        replay.set("QuickProcess", true);
        replay.set("Binary", binary);
        replay.set("Load File", file);
    }

    static bool waitUntilReplayed(Quoril::Core::Filter& player) {
        return Quoril::Core::waitFor([&] {
            const Quoril::Core::Synchronizer::DisablerLocker lock(player.getSynchronizer(),
                                                                  nullptr);
            return !Harness(player).get<bool>("Replay");
        });
    }

    /// Numbers from 0 on in both columns.
    static Rows countedRows(int count) {
        Rows rows;
        for (int i = 0; i < count; ++i)
            rows.push_back({1.0 * i, 1.0 * i});
        return rows;
    }

    static Rows readRows(const std::string& file, bool binary) {
        SensorFile::SensorFileReader reader;
        reader.open(file, binary);
        std::vector<double> row(reader.getConfig().getColumnCount());
        Rows rows;
        while (reader.readRow(row))
            rows.push_back(row);
        return rows;
    }

    static void expectNothingLost(const Quoril::Core::Flow& flow) {
        for (const Quoril::Core::PinReport& report : flow.getPinReports())
            EXPECT_EQ(report.counters.overwritten, 0U) << report.filter << "." << report.pin;
    }

    Support::TemporaryFolder folder;
    Quoril::Core::InstalledTestPlugin testFilters;
    Quoril::Core::PluginLoader loader;
};
