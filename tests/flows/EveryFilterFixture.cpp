#include "tests/flows/EveryFilterFixture.hpp"

#include "host/runner/PropertyText.hpp"
#include "sensorfile/Kivra2Calib.hpp"
#include "sensorfile/Kivra2Layout.hpp"
#include "sensorfile/SensorFileWriter.hpp"

using Quoril::Core::Filter;
using SensorFile::SensorFileConfig;
using SensorFile::SensorFileWriter;
namespace Kivra2 = SensorFile::Kivra2;

namespace {

constexpr int kRowCount = 3;

void addCalibs(SensorFileConfig& config) {
    for (const char* name : {Kivra2::kAccGain, Kivra2::kMagGain, Kivra2::kGyrGain})
        config.addCalibData(name, Eigen::MatrixXd::Identity(3, 3));
    for (const char* name : {Kivra2::kAccOffset, Kivra2::kMagOffset, Kivra2::kGyrOffset})
        config.addCalibData(name, Eigen::MatrixXd::Zero(1, 3));
}

bool hasProperty(const Filter& filter, const std::string& name) {
    return filter.getPropertyBag()->find(name) != nullptr;
}

}  // namespace

EveryFilterFixture::EveryFilterFixture() {
    std::filesystem::current_path(folder.path());
    writeFiles();
}

EveryFilterFixture::~EveryFilterFixture() {
    std::filesystem::current_path(before_);
}

void EveryFilterFixture::writeFiles() const {
    SensorFileConfig config;
    Kivra2::addColumns(config);
    Kivra2::addGyroColumns(config);
    addCalibs(config);
    // Rows follow each other without a wait, whatever paces them.
    config.setSampleFrequency(1e6);
    SensorFileWriter writer;
    writer.open(recording_, config, /*binary=*/true, /*writeHeaders=*/true);
    std::vector<double> row(Kivra2::kGyroColumnCount, 1.0);
    for (int i = 1; i <= kRowCount; ++i) {
        row[0] = i;
        writer.writeRow(row);
    }
    writer.close();

    SensorFileConfig calibs;
    calibs.setCalibOnly(true);
    addCalibs(calibs);
    writer.open(calibs_, calibs, /*binary=*/true, /*writeHeaders=*/true);
    writer.close();

    SensorFile::Kivra2Calib().save(unit_);
}

EveryFilterFixture::Settings EveryFilterFixture::settingsOf(const std::string& className) const {
    if (className == "FilterRecordKivra2Format")
        return {{"Save Gyro", "true"}, {"File Name", output_}};
    if (className == "FilterRecordSensorFile")
        return {
            {"File Name", output_},       {"Save Timestamp", "true"},  {"TimeStampColName", "TIME"},
            {"Pins Number", "2"},         {"ColNames#1", "A"},         {"ColTypes#1", "INT16"},
            {"ColNames#2", "D"},          {"Calib Pins Number", "2"},  {"CalibColNames#1", "Gain"},
            {"CalibColNames#2", "Range"}, {"CalibColTypes#2", "INT32"}};
    if (className == "FilterReplayKivra2Format")
        return {{"Load File", recording_}, {"AutoReplay", "true"}, {"SampleDelay", "0"}};
    if (className == "FilterReplaySensorFile")
        return {{"QuickProcess", "true"}, {"Load File", recording_}, {"AutoReplay", "true"}};
    if (className == "FilterKivra2CalibReader") return {{"Load File", unit_}};
    if (className == "FilterKivra2CalibWriter") return {{"Version", "3"}};
    if (className == "FilterCalibSensorFileReader") return {{"Load File", calibs_}};
    return {{"File Name", output_},
            {"Calib Pins Number", "2"},
            {"CalibColNames#1", "Gain"},
            {"CalibColNames#2", "Range"},
            {"CalibColTypes#2", "INT32"}};
}

void EveryFilterFixture::prepare(Filter& filter) const {
    const Harness harness(filter);
    for (const auto& [name, text] : settingsOf(filter.getClassName()))
        Quoril::Runner::setFromText(harness.property(name), text);
}

void EveryFilterFixture::switchOn(Filter& filter) const {
    Harness harness(filter);
    for (const char* name : {"Record", "Replay"})
        if (hasProperty(filter, name)) harness.set(name, true);
    for (const char* name : {"Flush", "Save"})
        if (hasProperty(filter, name)) harness.trigger(name);
    if (hasProperty(filter, "Save File")) harness.set("Save File", output_);
}

void EveryFilterFixture::switchOff(Filter& filter) {
    Harness harness(filter);
    for (const char* name : {"Record", "Replay"})
        if (hasProperty(filter, name)) harness.set(name, false);
}
