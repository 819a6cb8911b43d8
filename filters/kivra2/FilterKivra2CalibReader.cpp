#include "filters/kivra2/FilterKivra2CalibReader.hpp"

#include "filters/common/FilePath.hpp"
#include "filters/common/ForceSet.hpp"
#include "filters/common/WallClock.hpp"
#include "filters/kivra2/Kivra2Pins.hpp"

#include <Poco/Exception.h>
#include <Poco/Path.h>

using Filters::MatrixOutputPin;
using SensorFile::Kivra2Calib;

namespace {

// The month stands in the place of the day too; users know the text like this.
std::string describeDate(const Kivra2Calib::Date& date) {
    const auto text = [](int number) { return std::to_string(number); };
    const std::string month = text(date.month == 0 ? 1 : date.month);
    return month + "/" + month + "/" + text(date.year + 2000) + ", " + text(date.hour) + ":" +
           text(date.minute) + ":" + text(date.second);
}

}  // namespace

FilterKivra2CalibReader::FilterKivra2CalibReader(const std::string& name)
    : Filter(name, true),
      accGain_(Kivra2Pins::kAccGain, this),
      accOffset_(Kivra2Pins::kAccOffset, this),
      magGain_(Kivra2Pins::kMagGain, this),
      magOffset_(Kivra2Pins::kMagOffset, this),
      gyrGain_(Kivra2Pins::kGyrGain, this),
      gyrOffset_(Kivra2Pins::kGyrOffset, this),
      loadFile_(kLoadFile, getPropertyBag()),
      version_(kVersion, getPropertyBag(), kNoVersion),
      dateTime_(kDateTime, getPropertyBag()),
      flush_(kFlush, getPropertyBag()) {
    loadFile_.setFilter("*");
    loadFile_.setHints(/*mustExist=*/true, /*isFolder=*/false, /*isWritten=*/false);
    dateTime_.set(kNoDateTime);
    version_.setIsWritable(false);
    dateTime_.setIsWritable(false);

    Quoril::Core::PropertyBag& bag = *getPropertyBag();
    bag.registerProperty(kLoadFile, loadFile_);
    bag.registerProperty(kVersion, version_);
    bag.registerProperty(kDateTime, dateTime_);
    bag.registerProperty(kFlush, flush_);

    loadFile_.attach(*this, &FilterKivra2CalibReader::onLoadFile);
    flush_.attach(*this, &FilterKivra2CalibReader::onFlush);
}

FilterKivra2CalibReader::~FilterKivra2CalibReader() = default;

const char* FilterKivra2CalibReader::getClassName() const {
    return kClassName;
}

void FilterKivra2CalibReader::process() {}

// A typed callback: the stored name is still the old one. What waits at connected pins stays what
// was sent: the matrices go into the pins only when they are sent.
void FilterKivra2CalibReader::onLoadFile(const std::string& file) {
    calib_ = Kivra2Calib();
    if (file.empty()) return;
    const Kivra2Calib::Extent extent = calib_.load(Filters::requireFile(Poco::Path::expand(file)));
    // What could be read is shown, also of a file that is cut.
    if (extent >= Kivra2Calib::Extent::kDate)
        Filters::forceSet(dateTime_, describeDate(calib_.date));
    if (extent >= Kivra2Calib::Extent::kVersion)
        Filters::forceSet(version_, static_cast<int>(calib_.version));
    if (extent < Kivra2Calib::Extent::kWhole) throw Poco::IOException(kCorrupted);
    onFlush();
}

void FilterKivra2CalibReader::onFlush() {
    const double now = Filters::unixTime();
    const auto send = [now](MatrixOutputPin& pin, const Eigen::MatrixXd& matrix) {
        pin.getValue() = matrix;
        pin.push(now);
    };
    send(accGain_, calib_.accGain);
    send(accOffset_, calib_.accOffset);
    send(magGain_, calib_.magGain);
    send(magOffset_, calib_.magOffset);
    send(gyrGain_, calib_.gyrGain);
    send(gyrOffset_, calib_.gyrOffset);
}
