#pragma once

#include "filters/kivra2/FilterRecordKivra2Format.hpp"
#include "sensorfile/SensorFileReader.hpp"
#include "tests/support/ExpectThrow.hpp"
#include "tests/support/FilterHarness.hpp"
#include "tests/support/TemporaryFolder.hpp"

#include <string>
#include <vector>

#include <gmock/gmock.h>

/// A recorder of an inertial unit, a folder for its files, and words to tell what happens to both.
class Kivra2RecordFixture : public testing::Test {
 protected:
    using Row = std::vector<double>;
    using Rows = std::vector<Row>;

    void start() {
        rec.set("File Name", file);
        rec.set("Record", true);
    }
    void stop() { rec.set("Record", false); }
    [[nodiscard]] bool isRecording() const { return rec.get<bool>("Record"); }

    /// Samples for the pins that every row needs.
    void pushPlain(const Row& acc = {1.0, 2.0, 3.0}, const Row& mag = {4.0, 5.0, 6.0},
                   double button = 7.0) {
        rec.push("3a", line(acc));
        rec.push("3m", line(mag));
        rec.push("Button", line({button}));
    }
    void recordPlain() {
        pushPlain();
        rec.step();
    }

    /// One recording of a single row, from what waits on the other pins.
    void recordFile() {
        start();
        recordPlain();
        stop();
    }

    /// A row vector.
    static Eigen::MatrixXd line(const Row& values) {
        Eigen::MatrixXd result(1, static_cast<Eigen::Index>(values.size()));
        for (std::size_t i = 0; i < values.size(); ++i)
            result(0, static_cast<Eigen::Index>(i)) = values[i];
        return result;
    }

    [[nodiscard]] SensorFile::SensorFileConfig header() const {
        SensorFile::SensorFileReader reader;
        reader.open(file, /*binary=*/true);
        return reader.getConfig();
    }
    [[nodiscard]] std::vector<std::string> columnNames() const {
        const SensorFile::SensorFileConfig config = header();
        std::vector<std::string> names;
        for (std::size_t i = 0; i < config.getColumnCount(); ++i)
            names.push_back(config.getColumn(i).getName());
        return names;
    }
    [[nodiscard]] std::vector<int> columnTypes() const {
        const SensorFile::SensorFileConfig config = header();
        std::vector<int> types;
        for (std::size_t i = 0; i < config.getColumnCount(); ++i)
            types.push_back(config.getColumn(i).getTypeCode());
        return types;
    }
    [[nodiscard]] std::vector<std::string> recordNames() const {
        const SensorFile::SensorFileConfig config = header();
        std::vector<std::string> names;
        for (std::size_t i = 0; i < config.getCalibCount(); ++i)
            names.push_back(config.getCalibName(i));
        return names;
    }
    [[nodiscard]] Rows rows() const {
        SensorFile::SensorFileReader reader;
        reader.open(file, /*binary=*/true);
        Rows rows;
        Row row(reader.getConfig().getColumnCount());
        while (reader.readRow(row))
            rows.push_back(row);
        return rows;
    }

    Support::TemporaryFolder folder;
    std::string file = folder.file("a.sf");
    FilterRecordKivra2Format filter{"recorder"};
    Support::FilterHarness rec{filter};
};
