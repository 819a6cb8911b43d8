#include "filters/sensorfile/FilterCalibSensorFileReader.hpp"

#include "filters/common/FilePath.hpp"
#include "filters/common/ForceSet.hpp"
#include "filters/common/NameList.hpp"
#include "filters/common/WallClock.hpp"
#include "sensorfile/SensorFileReader.hpp"

#include <vector>

#include <Poco/Exception.h>
#include <Poco/Path.h>

FilterCalibSensorFileReader::FilterCalibSensorFileReader(const std::string& name)
    : Filter(name, true),
      autoDetect_(kAutoDetect, getPropertyBag(), true),
      calibNames_(kCalibNames, getPropertyBag()),
      binary_(kBinary, getPropertyBag(), true),
      loadFile_(kLoadFile, getPropertyBag()),
      flush_(kFlush, getPropertyBag()),
      calibVersion_(kCalibVersion, getPropertyBag(), 0) {
    calibNames_.setIsWritable(false);
    loadFile_.setFilter("*");
    loadFile_.setHints(/*mustExist=*/true, /*isFolder=*/false, /*isWritten=*/false);
    calibVersion_.setIsWritable(false);
    registerProperties();

    autoDetect_.attach(*this, &FilterCalibSensorFileReader::onAutoDetect);
    loadFile_.attach(*this, &FilterCalibSensorFileReader::onLoadFile);
    flush_.attach(*this, &FilterCalibSensorFileReader::onFlush);
}

FilterCalibSensorFileReader::~FilterCalibSensorFileReader() = default;

const char* FilterCalibSensorFileReader::getClassName() const {
    return kClassName;
}

void FilterCalibSensorFileReader::process() {}

void FilterCalibSensorFileReader::registerProperties() {
    Quoril::Core::PropertyBag& bag = *getPropertyBag();
    bag.registerProperty(kAutoDetect, autoDetect_);
    bag.registerProperty(kCalibNames, calibNames_);
    bag.registerProperty(kBinary, binary_);
    bag.registerProperty(kLoadFile, loadFile_);
    bag.registerProperty(kFlush, flush_);
    bag.registerProperty(kCalibVersion, calibVersion_);
}

// The typed callbacks run before the value is stored: the property still has the old one.
void FilterCalibSensorFileReader::onAutoDetect(const bool& isOn) {
    calibNames_.setIsWritable(!isOn);
}

void FilterCalibSensorFileReader::onLoadFile(const std::string& file) {
    load(Poco::Path::expand(file));
}

void FilterCalibSensorFileReader::onFlush() {
    if (!isLoaded_) load(loadFile_.get());
    if (path_.empty()) return;
    // Nothing is sent of a file that is gone by now, or that has changed its encoding.
    SensorFile::SensorFileReader reader;
    reader.open(path_, binary_.get());
    Filters::sendAll(pins_, Filters::gregorianTime());
}

void FilterCalibSensorFileReader::load(const std::string& file) {
    if (file.empty()) return;
    isLoaded_ = true;
    pins_.clear();
    SensorFile::SensorFileReader reader;
    Filters::openReader(reader, file, binary_.get());
    path_ = Filters::makeFilePath(file).text;
    const SensorFile::SensorFileConfig& config = reader.getConfig();
    Filters::forceSet(calibVersion_, static_cast<int>(config.getCalibFormat()));
    pins_ = makePins(config);
}

Filters::MatrixOutputPins FilterCalibSensorFileReader::makePins(
    const SensorFile::SensorFileConfig& config) {
    if (autoDetect_.get()) return Filters::makeCalibPins(*this, config);
    const std::vector<std::string> names = Filters::splitNames(calibNames_.get());
    if (!Filters::hasCalibs(config, names)) throw Poco::DataException(kMissingRecord);
    Filters::MatrixOutputPins pins = Filters::makeNamedPins(*this, names);
    Filters::publishCalibration(config, names, pins);
    return pins;
}
