#pragma once

#include "filters/sensorfile/FilterRecordSensorFile.hpp"
#include "sensorfile/SensorFileReader.hpp"
#include "tests/support/ExpectThrow.hpp"
#include "tests/support/FilterHarness.hpp"
#include "tests/support/TemporaryFolder.hpp"

#include <string>
#include <utility>
#include <vector>

#include <Poco/File.h>
#include <gmock/gmock.h>

/// A record filter, a folder for its files, and words to tell what happens to both.
class RecordFixture : public testing::Test {
 protected:
    using Rows = std::vector<std::vector<double>>;

    /// Makes data pins, each with its column names and the text of their type.
    void makePins(const std::vector<std::pair<std::string, std::string>>& pins) {
        rec.set("Pins Number", static_cast<int>(pins.size()));
        for (std::size_t i = 0; i < pins.size(); ++i) {
            const std::string number = std::to_string(i + 1);
            rec.set("ColNames#" + number, pins[i].first);
            rec.choose("ColTypes#" + number, pins[i].second);
        }
    }

    void start() {
        rec.set("File Name", file);
        rec.set("Record", true);
    }
    void stop() { rec.set("Record", false); }
    [[nodiscard]] bool isRecording() const { return rec.get<bool>("Record"); }

    /// One row through pin "input#1".
    void record(std::initializer_list<double> values) {
        rec.push("input#1", Support::column(values));
        rec.step();
    }

    [[nodiscard]] SensorFile::SensorFileConfig header(bool binary = false) const {
        SensorFile::SensorFileReader reader;
        reader.open(file, binary);
        return reader.getConfig();
    }

    [[nodiscard]] std::vector<std::string> columnNames(bool binary = false) const {
        const SensorFile::SensorFileConfig config = header(binary);
        std::vector<std::string> names;
        for (std::size_t i = 0; i < config.getColumnCount(); ++i)
            names.push_back(config.getColumn(i).getName());
        return names;
    }

    [[nodiscard]] Rows rows(bool binary = false) const {
        SensorFile::SensorFileReader reader;
        reader.open(file, binary);
        Rows rows;
        std::vector<double> row(reader.getConfig().getColumnCount());
        while (reader.readRow(row))
            rows.push_back(row);
        return rows;
    }

    Support::TemporaryFolder folder;
    std::string file = folder.file("a.sf");
    FilterRecordSensorFile filter{"recorder"};
    Support::FilterHarness rec{filter};
};
