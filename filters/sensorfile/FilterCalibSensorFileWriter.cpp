#include "filters/sensorfile/FilterCalibSensorFileWriter.hpp"

#include "filters/common/FilePath.hpp"
#include "sensorfile/Clock.hpp"
#include "sensorfile/SensorFileConfig.hpp"
#include "sensorfile/SensorFileWriter.hpp"

#include <cstddef>
#include <sstream>

#include <Poco/DateTime.h>

namespace {

// Opening a writer empties the file, and only then it looks at the records: a first section that
// nobody keeps finds those that the encoding cannot hold.
void refuseLargeRecords(const SensorFile::SensorFileConfig& config, bool binary) {
    std::ostringstream section;
    config.writeCalibSection(section, binary);
}

}  // namespace

FilterCalibSensorFileWriter::FilterCalibSensorFileWriter(const std::string& name)
    : Filter(name, true),
      calibInputs_(*this),
      binary_(kBinary, getPropertyBag(), true),
      fileName_(kFileName, getPropertyBag()),
      save_(kSave, getPropertyBag()),
      calibVersion_(kCalibVersion, getPropertyBag(), kCalibFormat),
      calibPinCount_(kCalibPinsNumber, getPropertyBag(), 0) {
    fileName_.setFilter("*");
    fileName_.setHints(/*mustExist=*/false, /*isFolder=*/false, /*isWritten=*/true);
    calibVersion_.setIsWritable(false);
    calibPinCount_.setRange(0, kMaxPins, 1);
    registerProperties();

    save_.attach(*this, &FilterCalibSensorFileWriter::onSave);
    calibPinCount_.attach(*this, &FilterCalibSensorFileWriter::onCalibPinCountChanged);
}

FilterCalibSensorFileWriter::~FilterCalibSensorFileWriter() = default;

const char* FilterCalibSensorFileWriter::getClassName() const {
    return kClassName;
}

void FilterCalibSensorFileWriter::process() {}

void FilterCalibSensorFileWriter::registerProperties() {
    Quoril::Core::PropertyBag& bag = *getPropertyBag();
    bag.registerProperty(kBinary, binary_);
    bag.registerProperty(kFileName, fileName_);
    bag.registerProperty(kSave, save_);
    bag.registerProperty(kCalibVersion, calibVersion_);
    bag.registerProperty(kCalibPinsNumber, calibPinCount_);
}

void FilterCalibSensorFileWriter::onCalibPinCountChanged() {
    calibInputs_.resize(static_cast<std::size_t>(calibPinCount_.get()));
    calibInputs_.getPins().show();
}

// Everything that can be refused comes before the file is touched.
void FilterCalibSensorFileWriter::onSave() {
    const std::string path = Filters::requireFileName(fileName_.get());
    const Poco::DateTime now = SensorFile::Clock::current().now();
    SensorFile::SensorFileConfig config;
    config.setCalibOnly(true);
    config.setCreationTime(now);
    config.setCalibTime(now);
    config.setCalibFormat(kCalibFormat);
    calibInputs_.noteDescriptions();
    calibInputs_.addRecords(config, kBadCalibType);
    const bool binary = binary_.get();
    refuseLargeRecords(config, binary);
    SensorFile::SensorFileWriter writer;
    Filters::openWriter(writer, path, config, binary, /*writeHeaders=*/true);
    writer.close();
}
