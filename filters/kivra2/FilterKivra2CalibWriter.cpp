#include "filters/kivra2/FilterKivra2CalibWriter.hpp"

#include "filters/common/FilePath.hpp"
#include "filters/kivra2/Kivra2Pins.hpp"
#include "sensorfile/Clock.hpp"
#include "sensorfile/Kivra2Calib.hpp"

#include <cstdint>

#include <Poco/Path.h>

using Filters::MatrixInputPin;
using SensorFile::Kivra2Calib;

namespace {

void takeInto(Eigen::MatrixXd& matrix, MatrixInputPin& pin) {
    if (pin.fetch()) matrix = pin.take()->value;
}

}  // namespace

FilterKivra2CalibWriter::FilterKivra2CalibWriter(const std::string& name)
    : Filter(name, true),
      accGain_(Kivra2Pins::kAccGain, this),
      accOffset_(Kivra2Pins::kAccOffset, this),
      magGain_(Kivra2Pins::kMagGain, this),
      magOffset_(Kivra2Pins::kMagOffset, this),
      gyrGain_(Kivra2Pins::kGyrGain, this),
      gyrOffset_(Kivra2Pins::kGyrOffset, this),
      saveFile_(kSaveFile, getPropertyBag()),
      version_(kVersion, getPropertyBag(), 0) {
    for (MatrixInputPin* pin :
         {&accGain_, &accOffset_, &magGain_, &magOffset_, &gyrGain_, &gyrOffset_})
        pin->setBuffer({.size = Kivra2Pins::kCalibBuffer});
    saveFile_.setFilter("*");
    saveFile_.setHints(/*mustExist=*/false, /*isFolder=*/false, /*isWritten=*/true);
    getPropertyBag()->registerProperty(kSaveFile, saveFile_);
    getPropertyBag()->registerProperty(kVersion, version_);
    saveFile_.attach(*this, &FilterKivra2CalibWriter::onSaveFile);
}

FilterKivra2CalibWriter::~FilterKivra2CalibWriter() = default;

const char* FilterKivra2CalibWriter::getClassName() const {
    return kClassName;
}

void FilterKivra2CalibWriter::process() {}

// A typed callback: the stored name is still the old one. Waiting samples are taken even when the
// path is refused then.
void FilterKivra2CalibWriter::onSaveFile(const std::string& file) {
    if (file.empty()) return;
    Kivra2Calib calib;
    takeInto(calib.accGain, accGain_);
    takeInto(calib.magGain, magGain_);
    takeInto(calib.gyrGain, gyrGain_);
    takeInto(calib.accOffset, accOffset_);
    takeInto(calib.magOffset, magOffset_);
    takeInto(calib.gyrOffset, gyrOffset_);
    const std::string path = Filters::requireFileName(Poco::Path::expand(file));
    calib.date = Kivra2Calib::Date(SensorFile::Clock::current().now());
    calib.version = static_cast<std::uint16_t>(version_.get());
    calib.save(path);
}
