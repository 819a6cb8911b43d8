#include "tests/stress/InputFiles.hpp"

#include "sensorfile/Kivra2Calib.hpp"
#include "sensorfile/Kivra2Layout.hpp"
#include "sensorfile/SensorFileWriter.hpp"
#include "tests/support/TemporaryFolder.hpp"

#include <fstream>

namespace Stress {

namespace {

using SensorFile::SensorFileConfig;
using SensorFile::SensorFileWriter;
namespace Kivra2 = SensorFile::Kivra2;

constexpr int kRowCount = 500;
constexpr int kTableRowCount = 2000;

struct Kind {
    bool hasGyro;
    bool isBinary;
    double frequency;
};

void addCalibrations(SensorFileConfig& config) {
    for (const char* name : {Kivra2::kAccGain, Kivra2::kMagGain, Kivra2::kGyrGain})
        config.addCalibData(name, Eigen::MatrixXd::Identity(3, 3));
    for (const char* name : {Kivra2::kAccOffset, Kivra2::kMagOffset, Kivra2::kGyrOffset})
        config.addCalibData(name, Eigen::MatrixXd::Zero(1, 3));
}

// Counters follow each other: a gap makes a replay sleep for its length.
void writeRecording(const std::string& path, const Kind& kind) {
    SensorFileConfig config;
    Kivra2::addColumns(config);
    if (kind.hasGyro) Kivra2::addGyroColumns(config);
    addCalibrations(config);
    config.setSampleFrequency(kind.frequency);
    SensorFileWriter writer;
    writer.open(path, config, kind.isBinary, /*writeHeaders=*/true);
    std::vector<double> row(config.getColumnCount(), 1.0);
    for (int i = 0; i < kRowCount; ++i) {
        row[0] = i;
        writer.writeRow(row);
    }
    writer.close();
}

void writeCalibrations(const std::string& path) {
    SensorFileConfig config;
    config.setCalibOnly(true);
    addCalibrations(config);
    SensorFileWriter writer;
    writer.open(path, config, /*binary=*/true, /*writeHeaders=*/true);
    writer.close();
}

void writeTable(const std::string& path) {
    std::ofstream stream(path);
    stream << "time,a,b,c\n";
    for (int i = 0; i < kTableRowCount; ++i)
        stream << i * 0.001 << ',' << i << ',' << -i << ',' << 0.5 * i << '\n';
}

}  // namespace

InputFiles::InputFiles(const std::string& folder)
    : recording(folder + "/gyro.bin"),
      unit(folder + "/unit.cal"),
      calibrations(folder + "/calibrations.bin"),
      table(folder + "/table.csv") {
    const auto add = [&](const std::string& name, const Kind& kind) {
        recordings.push_back(folder + "/" + name);
        writeRecording(recordings.back(), kind);
    };
    add("gyro.bin", {.hasGyro = true, .isBinary = true, .frequency = 8000.0});
    add("plain.bin", {.hasGyro = false, .isBinary = true, .frequency = 8000.0});
    add("slow.bin", {.hasGyro = true, .isBinary = true, .frequency = 200.0});
    add("none.bin", {.hasGyro = true, .isBinary = true, .frequency = 0.0});
    add("text.txt", {.hasGyro = true, .isBinary = false, .frequency = 8000.0});
    SensorFile::Kivra2Calib().save(unit);
    writeCalibrations(calibrations);
    writeTable(table);

    const std::string torn = folder + "/torn.bin";
    const std::string bytes = Support::readBytes(recording);
    Support::writeBytes(torn, bytes.substr(0, bytes.size() - 7));
    const std::string headless = folder + "/headless.bin";
    Support::writeBytes(headless, bytes.substr(0, 60));
    const std::string nothing = folder + "/nothing.bin";
    Support::writeBytes(nothing, "");
    bad = {headless, nothing, folder, folder + "/missing.bin", folder + "/no/such.bin", ""};

    recordings.push_back(torn);
    all = recordings;
    all.insert(all.end(), {unit, calibrations, table});
    all.insert(all.end(), bad.begin(), bad.end());
}

}  // namespace Stress
