#include "filters/sensorfile/FilterReplaySensorFile.hpp"

#include "filters/common/FilePath.hpp"
#include "filters/common/ForceSet.hpp"
#include "filters/common/NameList.hpp"
#include "filters/common/Sleep.hpp"
#include "filters/sensorfile/OutputNaming.hpp"

#include <algorithm>
#include <exception>

#include <Poco/Exception.h>
#include <Poco/Path.h>

using Filters::FilterGuard;
using Filters::forceSet;
using Filters::splitNames;

namespace {

std::vector<std::string> columnNamesOf(const SensorFile::SensorFileConfig& config) {
    std::vector<std::string> names;
    for (std::size_t i = 0; i < config.getColumnCount(); ++i)
        names.push_back(config.getColumn(i).getName());
    return names;
}

// A file with a single column is refused on purpose: it has nothing to replay beside its time.
bool isReplayable(const SensorFile::SensorFileConfig& config) {
    const std::vector<std::string> names = columnNamesOf(config);
    return names.size() >= 2 && std::none_of(names.begin(), names.end(),
                                             [](const std::string& name) { return name.empty(); });
}

}  // namespace

FilterReplaySensorFile::FilterReplaySensorFile(const std::string& name)
    : Filter(name, true),
      outputs_(*this),
      autoDetect_(kAutoDetect, getPropertyBag(), true),
      minSize_(kMinSize, getPropertyBag(), 3),
      columnNames_(kColumnNames, getPropertyBag()),
      calibNames_(kCalibNames, getPropertyBag()),
      binary_(kBinary, getPropertyBag(), true),
      loadFile_(kLoadFile, getPropertyBag()),
      reloadFile_(kReloadFile, getPropertyBag()),
      frequency_(kFrequency, getPropertyBag(), 0.0),
      calibVersion_(kCalibVersion, getPropertyBag(), 0),
      replay_(kReplay, getPropertyBag(), false),
      pause_(kPause, getPropertyBag(), false),
      autoReplay_(kAutoReplay, getPropertyBag(), false),
      timeStampMode_(kTimeStampMode, getPropertyBag()),
      enableFileTimeStamp_(kEnableFileTimeStamp, getPropertyBag(), true),
      timeStampColName_(kTimeStampColName, getPropertyBag()),
      sampleDelay_(kSampleDelay, getPropertyBag(), 10),
      quickProcess_(kQuickProcess, getPropertyBag(), false) {
    setUpProperties();
    registerProperties();
    attachCallbacks();
}

FilterReplaySensorFile::~FilterReplaySensorFile() = default;

const char* FilterReplaySensorFile::getClassName() const {
    return kClassName;
}

void FilterReplaySensorFile::setUpProperties() {
    minSize_.setRange(1, 30, 1);
    columnNames_.setIsWritable(false);
    calibNames_.setIsWritable(false);
    loadFile_.setFilter("*");
    loadFile_.setHints(/*mustExist=*/true, /*isFolder=*/false, /*isWritten=*/false);
    frequency_.setIsWritable(false);
    calibVersion_.setIsWritable(false);
    // A restored flow must not start to replay by itself.
    replay_.setIsPersistent(false);
    pause_.setIsPersistent(false);
    timeStampMode_.setEntries({kTicks, kFrameNumber});
    timeStampColName_.set(kDefaultTimeStampColumn);
    sampleDelay_.setRange(0, 1000, 1);
    sampleDelay_.setIsWritable(false);
}

void FilterReplaySensorFile::registerProperties() {
    Quoril::Core::AbstractProperty* const properties[] = {
        &autoDetect_,  &minSize_,      &columnNames_,   &calibNames_,          &binary_,
        &loadFile_,    &reloadFile_,   &frequency_,     &calibVersion_,        &replay_,
        &pause_,       &autoReplay_,   &timeStampMode_, &enableFileTimeStamp_, &timeStampColName_,
        &sampleDelay_, &quickProcess_,
    };
    for (Quoril::Core::AbstractProperty* property : properties)
        getPropertyBag()->registerProperty(property->getName(), *property);
}

void FilterReplaySensorFile::attachCallbacks() {
    autoDetect_.attach(*this, &FilterReplaySensorFile::onAutoDetect);
    loadFile_.attach(*this, &FilterReplaySensorFile::onLoadFile);
    reloadFile_.attach(*this, &FilterReplaySensorFile::onReloadFile);
    replay_.attach(*this, &FilterReplaySensorFile::onReplay);
    timeStampColName_.attach(*this, &FilterReplaySensorFile::onTimeStampColName);
}

// The typed callbacks run before the value is stored: the property still has the old one.
void FilterReplaySensorFile::onAutoDetect(const bool& isOn) {
    minSize_.setIsWritable(isOn);
    columnNames_.setIsWritable(!isOn);
    calibNames_.setIsWritable(!isOn);
    if (isOn == autoDetect_.get()) return;
    const FilterGuard::Busy busy(guard_);
    needsReload_ = true;
    if (isOn) return;
    removeOutputs();
    outputs_.makeUnbound(splitNames(columnNames_.get()), splitNames(calibNames_.get()));
}

void FilterReplaySensorFile::onLoadFile(const std::string& file) {
    load(Poco::Path::expand(file));
}

void FilterReplaySensorFile::onReloadFile() {
    load(loadFile_.get());
}

void FilterReplaySensorFile::onReplay(const bool& isOn) {
    const FilterGuard::Busy busy(guard_);
    if (isOn) startReplay();
    isReplaying_ = isOn;
    setConfigurationWritable(!isOn);
    if (isOn) outputs_.sendCalibration(pacing_.getTime());
}

void FilterReplaySensorFile::onTimeStampColName(const std::string& names) {
    const std::vector<std::string> list = splitNames(names);
    if (list.empty()) return;
    const FilterGuard::Busy busy(guard_);
    timeStampColumn_ = list.front();
    timeStampPin_.reset();
}

void FilterReplaySensorFile::load(const std::string& file) {
    const FilterGuard::Busy busy(guard_);
    removeOutputs();
    if (file.empty()) return;
    try {
        Filters::openReader(reader_, file, binary_.get());
        showHeader();
        if (!isReplayable(config_)) throw Poco::DataException(kInvalidFormat);
        makeOutputs();
    } catch (...) {
        forgetFile();
        unlockLoaded(false);
        throw;
    }
    row_.assign(config_.getColumnCount(), 0.0);
    pacing_.forgetFrame();
    needsReload_ = false;
    unlockLoaded(true);
}

void FilterReplaySensorFile::showHeader() {
    config_ = reader_.getConfig();
    pacing_.setFrequency(config_.getSampleFrequency());
    forceSet(frequency_, config_.getSampleFrequency());
    forceSet(calibVersion_, static_cast<int>(config_.getCalibFormat()));
}

void FilterReplaySensorFile::makeOutputs() {
    if (autoDetect_.get()) {
        const auto minSize = static_cast<std::size_t>(minSize_.get());
        outputs_.makeDetected(config_, detectOutputs(columnNamesOf(config_), minSize));
    } else {
        outputs_.makeNamed(config_, splitNames(columnNames_.get()), splitNames(calibNames_.get()));
    }
}

void FilterReplaySensorFile::removeOutputs() {
    outputs_.clear();
    timeStampPin_.reset();
}

void FilterReplaySensorFile::forgetFile() {
    reader_.close();
    config_ = SensorFile::SensorFileConfig();
    removeOutputs();
}

void FilterReplaySensorFile::unlockLoaded(bool isLoaded) {
    const bool hasFrequency = pacing_.getFrequency() != 0.0;
    replay_.setIsWritable(isLoaded);
    autoReplay_.setIsWritable(isLoaded);
    enableFileTimeStamp_.setIsWritable(hasFrequency && isLoaded);
    timeStampColName_.setIsWritable(hasFrequency && isLoaded);
    sampleDelay_.setIsWritable(!hasFrequency || !isLoaded);
}

void FilterReplaySensorFile::startReplay() {
    if (needsReload_) throw Poco::IOException(kNeedsReload);
    noteSettings();
    if (!reader_.isOpen()) return;
    reader_.rewind();
    // Otherwise every row would be a step back until the last frame number is reached again.
    pacing_.forgetFrame();
}

void FilterReplaySensorFile::noteSettings() {
    pacingSettings_.mode =
        timeStampMode_.get() == 0 ? ReplayPacing::Mode::kTicks : ReplayPacing::Mode::kFrameNumber;
    pacingSettings_.usesFileTime = enableFileTimeStamp_.get();
    pacingSettings_.delay = sampleDelay_.get();
    pacingSettings_.isQuick = quickProcess_.get();
    repeats_ = autoReplay_.get();
}

void FilterReplaySensorFile::setConfigurationWritable(bool isWritable) {
    const bool isAuto = autoDetect_.get();
    autoDetect_.setIsWritable(isWritable);
    columnNames_.setIsWritable(isWritable && !isAuto);
    calibNames_.setIsWritable(isWritable && !isAuto);
    minSize_.setIsWritable(isWritable && isAuto);
    binary_.setIsWritable(isWritable);
    loadFile_.setIsWritable(isWritable);
    reloadFile_.setIsWritable(isWritable);
    autoReplay_.setIsWritable(isWritable);
    timeStampMode_.setIsWritable(isWritable);
    enableFileTimeStamp_.setIsWritable(isWritable);
    timeStampColName_.setIsWritable(isWritable);
    sampleDelay_.setIsWritable(isWritable);
    quickProcess_.setIsWritable(isWritable);
}

void FilterReplaySensorFile::process() {
    if (!replay_.get() || pause_.get()) return;
    Aftermath aftermath;
    {
        const FilterGuard::Call call(guard_);
        // Tested again, under the mutex: a stop may have come after "Replay" was read.
        if (call.isBusy() || !isReplaying_) return;
        aftermath = replayRow();
    }
    apply(aftermath);
}

// Nothing gets out of a processing call.
FilterReplaySensorFile::Aftermath FilterReplaySensorFile::replayRow() {
    Aftermath aftermath;
    if (!reader_.isOpen()) return aftermath;
    try {
        const bool hasRow = reader_.readRow(row_);
        findTimeStampPin(aftermath);
        if (hasRow)
            sendRow(aftermath);
        else if (!repeats_)
            aftermath.endsReplay = true;
        else {
            reader_.rewind();
            pacing_.forgetFrame();
        }
    } catch (const std::exception&) {
        // A file that cannot be read any further ends like any other.
        aftermath.endsReplay = true;
    }
    return aftermath;
}

void FilterReplaySensorFile::findTimeStampPin(Aftermath& aftermath) {
    if (!pacingSettings_.usesFileTime || timeStampPin_) return;
    timeStampPin_ = outputs_.findData(timeStampColumn_);
    if (!timeStampPin_) timeStampPin_ = outputs_.findData(kDefaultTimeStampColumn);
    if (timeStampPin_) return;
    pacingSettings_.usesFileTime = false;
    aftermath.endsFileTime = true;
}

void FilterReplaySensorFile::sendRow(Aftermath& aftermath) {
    outputs_.fill(row_);
    const double fileTime =
        pacingSettings_.usesFileTime ? outputs_.firstValue(*timeStampPin_) : 0.0;
    const ReplayPacing::Step step = pacing_.next(pacingSettings_, fileTime);
    if (step.endsFileTime) {
        pacingSettings_.usesFileTime = false;
        aftermath.endsFileTime = true;
    }
    if (!step.isSent) return;
    Filters::sleepMilliseconds(step.sleepTime);
    outputs_.sendData(pacing_.getTime());
}

// Called without the mutex: setting the properties runs callbacks that take it.
void FilterReplaySensorFile::apply(const Aftermath& aftermath) noexcept {
    if (aftermath.endsFileTime) Filters::forceSetQuietly(enableFileTimeStamp_, false);
    if (aftermath.endsReplay) Filters::forceSetQuietly(replay_, false);
}
