#include "filters/sensorfile/FilterRecordSensorFile.hpp"

#include "filters/common/ColumnTypeChoice.hpp"
#include "filters/common/EndedRecording.hpp"
#include "filters/common/FilePath.hpp"
#include "filters/common/ForceSet.hpp"
#include "filters/common/NameList.hpp"
#include "sensorfile/Clock.hpp"

#include <exception>
#include <iostream>

#include <Poco/Exception.h>

using Filters::FilterGuard;
using Filters::InputPinMva;
using Filters::MatrixInputPin;
using Filters::MatrixSample;

FilterRecordSensorFile::FilterRecordSensorFile(const std::string& name)
    : Filter(name, true),
      dataPins_(*this, {{"input#", "ColNames#", "ColTypes#"},
                        Filters::columnTypeChoices(),
                        {.size = kDataBuffer, .isLifo = false}}),
      calibInputs_(*this),
      binary_(kBinary, getPropertyBag(), false),
      fileName_(kFileName, getPropertyBag()),
      record_(kRecord, getPropertyBag(), false),
      saveTimestamp_(kSaveTimestamp, getPropertyBag(), false),
      frequency_(kFreq, getPropertyBag(), 200.0),
      calibVersion_(kCalibVersion, getPropertyBag(), kCalibFormat),
      precision_(kDoublePrecision, getPropertyBag(), 6),
      pinCount_(kPinsNumber, getPropertyBag(), 0),
      calibPinCount_(kCalibPinsNumber, getPropertyBag(), 0) {
    fileName_.setFilter("*");
    fileName_.setHints(/*mustExist=*/false, /*isFolder=*/false, /*isWritten=*/true);
    // A restored flow must not start to record by itself.
    record_.setIsPersistent(false);
    calibVersion_.setIsWritable(false);
    precision_.setRange(0, kMaxPrecision, 1);
    pinCount_.setRange(0, kMaxPins, 1);
    calibPinCount_.setRange(0, kMaxPins, 1);
    registerProperties();

    record_.attach(*this, &FilterRecordSensorFile::onRecord);
    record_.attach(*this, &FilterRecordSensorFile::onRecordChanged);
    saveTimestamp_.attach(*this, &FilterRecordSensorFile::onSaveTimestamp);
    pinCount_.attach(*this, &FilterRecordSensorFile::onPinCountChanged);
    calibPinCount_.attach(*this, &FilterRecordSensorFile::onCalibPinCountChanged);
}

FilterRecordSensorFile::~FilterRecordSensorFile() = default;

const char* FilterRecordSensorFile::getClassName() const {
    return kClassName;
}

void FilterRecordSensorFile::registerProperties() {
    Quoril::Core::PropertyBag& bag = *getPropertyBag();
    bag.registerProperty(kBinary, binary_);
    bag.registerProperty(kFileName, fileName_);
    bag.registerProperty(kRecord, record_);
    bag.registerProperty(kSaveTimestamp, saveTimestamp_);
    bag.registerProperty(kFreq, frequency_);
    bag.registerProperty(kCalibVersion, calibVersion_);
    bag.registerProperty(kDoublePrecision, precision_);
    bag.registerProperty(kPinsNumber, pinCount_);
    bag.registerProperty(kCalibPinsNumber, calibPinCount_);
}

void FilterRecordSensorFile::showPinProperties() {
    Quoril::Core::PropertyBag& bag = *getPropertyBag();
    Filters::showLast(bag, pinCount_);
    dataPins_.show();
    Filters::showLast(bag, calibPinCount_);
    calibInputs_.getPins().show();
}

// A typed callback: the stored value of "Record" is still the old one.
void FilterRecordSensorFile::onRecord(const bool& isOn) {
    const FilterGuard::Busy busy(guard_);
    if (isOn)
        openFile();
    else
        endFile();
    requireNames();
    setPinPropertiesWritable(!isOn);
    describeColumns();
}

void FilterRecordSensorFile::onRecordChanged() {
    const bool isWritable = !record_.get();
    fileName_.setIsWritable(isWritable);
    saveTimestamp_.setIsWritable(isWritable);
    precision_.setIsWritable(isWritable);
    pinCount_.setIsWritable(isWritable);
    calibPinCount_.setIsWritable(isWritable);
}

void FilterRecordSensorFile::onSaveTimestamp(const bool& isOn) {
    const FilterGuard::Busy busy(guard_);
    if (!isOn) {
        timeStamp_.reset();
        return;
    }
    if (timeStamp_) return;
    timeStamp_ = std::make_unique<InputPinMva>(
        *this, InputPinMva::Names{kTimeStampPin, kTimeStampColName, kTimeStampColType},
        Filters::timeStampTypeChoices(),
        Quoril::Core::BufferSettings{.size = kDataBuffer, .isLifo = false});
    timeStamp_->show();
    Quoril::Core::PropertyBag& bag = *getPropertyBag();
    Filters::showLast(bag, frequency_);
    Filters::showLast(bag, calibVersion_);
    Filters::showLast(bag, precision_);
    showPinProperties();
}

void FilterRecordSensorFile::onPinCountChanged() {
    const FilterGuard::Busy busy(guard_);
    dataPins_.resize(static_cast<std::size_t>(pinCount_.get()));
    showPinProperties();
}

void FilterRecordSensorFile::onCalibPinCountChanged() {
    const FilterGuard::Busy busy(guard_);
    calibInputs_.resize(static_cast<std::size_t>(calibPinCount_.get()));
    showPinProperties();
}

void FilterRecordSensorFile::openFile() {
    // A start that failed after the opening left its file open: never record into that one.
    if (!record_.get()) endFile();
    Filters::openWriter(writer_, fileName_.get(), config_, binary_.get(), /*writeHeaders=*/false);
}

void FilterRecordSensorFile::endFile() {
    isHeaderWritten_ = false;
    if (!writer_.isOpen()) return;
    config_ = SensorFile::SensorFileConfig();
    tellRowsLeftOut();
    writer_.close();
}

// Once a recording: a column of the wrong type would fill the error output row by row.
void FilterRecordSensorFile::tellRowsLeftOut() const {
    const auto count = writer_.refusedRowCount();
    if (count > 0) std::cerr << getName() << ": " << count << kRowsLeftOut << '\n';
}

void FilterRecordSensorFile::requireNames() const {
    if (saveTimestamp_.get() && timeStamp_ && timeStamp_->getColumnNames().get().empty())
        throw Poco::IOException(kNoTimeStampName);
    dataPins_.requireNames();
    calibInputs_.getPins().requireNames();
}

void FilterRecordSensorFile::setPinPropertiesWritable(bool isWritable) {
    if (timeStamp_) timeStamp_->setIsWritable(isWritable);
    dataPins_.setIsWritable(isWritable);
    calibInputs_.getPins().setIsWritable(isWritable);
}

void FilterRecordSensorFile::describeColumns() {
    columns_.clear();
    takesTimeStamp_ = saveTimestamp_.get() && timeStamp_ != nullptr;
    if (takesTimeStamp_)
        columns_.push_back({timeStamp_->getColumnNames().get(),
                            Filters::timeStampTypeCode(timeStamp_->getColumnType().get())});
    for (std::size_t i = 0; i < dataPins_.size(); ++i) {
        const int typeCode = Filters::columnTypeCode(dataPins_[i].getColumnType().get());
        for (const std::string& name : Filters::splitNames(dataPins_[i].getColumnNames().get()))
            columns_.push_back({name, typeCode});
    }
    calibInputs_.noteDescriptions();
}

void FilterRecordSensorFile::process() {
    if (!record_.get()) return;
    std::optional<HeaderSettings> settings;
    if (isHeaderPending()) settings = HeaderSettings{frequency_.get(), precision_.get()};
    std::exception_ptr error;
    {
        const FilterGuard::Call call(guard_);
        if (!call.isBusy()) error = recordRow(settings);
    }
    if (error == nullptr) return;
    // Without the mutex: setting "Record" runs callbacks that take it.
    Filters::logEndedRecording(*this, fileName_.get(), error);
    Filters::forceSetQuietly(record_, false);
}

// Not null when the recording cannot go on. Nothing gets out of a processing call.
std::exception_ptr FilterRecordSensorFile::recordRow(
    const std::optional<HeaderSettings>& settings) {
    // Tested here, under the mutex: a stop may have come after "Record" was read.
    if (!writer_.isOpen() || dataPins_.isEmpty()) return nullptr;
    try {
        if (isHeaderPending()) {
            if (!settings) return nullptr;
            writeHeader(*settings);
        }
        if (config_.getColumnCount() > 0 && collectRow()) writeRow();
        return nullptr;
    } catch (const std::exception&) {
        std::exception_ptr error = std::current_exception();
        abandonFile();
        return error;
    }
}

void FilterRecordSensorFile::writeHeader(const HeaderSettings& settings) {
    // Built afresh each time: a header that could not be written must leave nothing behind.
    SensorFile::SensorFileConfig config;
    config.setSampleFrequency(settings.frequency);
    config.setDoublePrecision(settings.precision);
    for (const ColumnDescription& column : columns_)
        config.addColumn(column.name, column.typeCode);
    config.setCreationTime(SensorFile::Clock::current().now());
    config.setCalibFormat(kCalibFormat);
    calibInputs_.addRecords(config, Filters::kBadColumnType);
    writer_.writeHeaders(config);
    config_ = std::move(config);
    isHeaderWritten_ = true;
}

// False when a sample is missing or empty; what was taken before it is lost.
bool FilterRecordSensorFile::collectRow() {
    row_.clear();
    if (takesTimeStamp_ && timeStamp_) {
        MatrixInputPin& pin = timeStamp_->getPin();
        if (!pin.fetch()) return false;
        const MatrixSample* sample = pin.take();
        if (sample->value.size() == 0) return false;
        row_.push_back(*sample->value.data());
    }
    for (std::size_t i = 0; i < dataPins_.size(); ++i) {
        MatrixInputPin& pin = dataPins_[i].getPin();
        if (!pin.fetch()) return false;
        const MatrixSample* sample = pin.take();
        if (sample->value.size() == 0) return false;
        const double* values = sample->value.data();
        row_.insert(row_.end(), values, values + sample->value.size());
    }
    return true;
}

void FilterRecordSensorFile::writeRow() {
    if (row_.size() != config_.getColumnCount()) {
        std::cout << kBadColumnCount << '\n';
        return;
    }
    try {
        writer_.writeRow(row_);
    } catch (const Poco::RangeException&) {
        // A value that its column cannot hold in text: the writer left the whole row out, and
        // counts it.
    }
}

void FilterRecordSensorFile::abandonFile() noexcept {
    try {
        endFile();
    } catch (const std::exception&) {
        // The file is closed all the same, after the last whole row that it could take.
    }
}
