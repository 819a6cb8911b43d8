#pragma once

#include "filters/common/CalibInputs.hpp"
#include "filters/common/FilterGuard.hpp"
#include "filters/common/InputPinList.hpp"
#include "framework/FileNameProperty.hpp"
#include "framework/Filter.hpp"
#include "framework/RangeProperty.hpp"
#include "sensorfile/SensorFileConfig.hpp"
#include "sensorfile/SensorFileWriter.hpp"

#include <atomic>
#include <cstddef>
#include <exception>
#include <memory>
#include <optional>
#include <string>
#include <vector>

/// Records the matrices that arrive on its pins into a sensor file, one row a processing call.
///
/// Life: set "File Name" and the pins' properties, set "Record" to true, let the host call
/// process(), set "Record" to false. The file is created when "Record" becomes true; its header is
/// written at the first call after that, with the calibration matrices that wait then.
///
/// A row takes one sample from every data pin, connected or not; each matrix contributes all its
/// elements, column by column. A call that lacks a sample drops what it took from earlier pins. A
/// row with another number of values than the file has columns is told on the standard output and
/// not written; one with a value that its column cannot hold in text is left out whole, and how
/// many were is told on the error output when the recording ends.
///
/// When the file cannot take more (a full disk) or its header cannot be written, the recording
/// ends: the file is closed after its last whole row, the cause is logged, and "Record" turns
/// false.
///
/// Properties are set from any thread, under the filter's synchronizer; process() is called by one
/// thread at a time.
class FilterRecordSensorFile final : public Quoril::Core::Filter {
 public:
    static constexpr const char* kClassName = "FilterRecordSensorFile";

    static constexpr const char* kBinary = "Binary";
    static constexpr const char* kFileName = "File Name";
    static constexpr const char* kRecord = "Record";
    static constexpr const char* kSaveTimestamp = "Save Timestamp";
    static constexpr const char* kFreq = "Freq";
    static constexpr const char* kCalibVersion = "Calib Version";
    static constexpr const char* kDoublePrecision = "Double Precision";
    static constexpr const char* kPinsNumber = "Pins Number";
    static constexpr const char* kCalibPinsNumber = "Calib Pins Number";
    static constexpr const char* kTimeStampPin = "TimeStampPin";
    static constexpr const char* kTimeStampColName = "TimeStampColName";
    static constexpr const char* kTimeStampColType = "TimeStampColType";

    static constexpr const char* kNoTimeStampName = "TimeStamp Col Name is empty!";
    static constexpr const char* kBadColumnCount = "SensorFileError : check col number.";
    static constexpr const char* kRowsLeftOut =
        " row(s) left out of the recording, a value did not fit its column";

    static constexpr int kMaxPins = 20;
    static constexpr int kMaxPrecision = 20;
    /// Samples that a data pin or the time-stamp pin keeps while the filter is not called.
    static constexpr unsigned kDataBuffer = 256;
    /// Written into every header after "Calib version:".
    static constexpr int kCalibFormat = 2;

    /// @param name  of this instance
    explicit FilterRecordSensorFile(const std::string& name);
    ~FilterRecordSensorFile() override;

    [[nodiscard]] const char* getClassName() const override;
    void process() override;

 private:
    /// What a header takes from properties: read before the mutex is taken.
    struct HeaderSettings {
        double frequency;
        int precision;
    };
    struct ColumnDescription {
        std::string name;
        int typeCode;
    };

    // Pins.
    Filters::InputPinList dataPins_;
    Filters::CalibInputs calibInputs_;
    std::unique_ptr<Filters::InputPinMva> timeStamp_;

    // Properties.
    Quoril::Core::ValueProperty<bool> binary_;
    Quoril::Core::FileNameProperty fileName_;
    Quoril::Core::ValueProperty<bool> record_;
    Quoril::Core::ValueProperty<bool> saveTimestamp_;
    Quoril::Core::ValueProperty<double> frequency_;
    Quoril::Core::ValueProperty<int> calibVersion_;
    Quoril::Core::RangeProperty<int> precision_;
    Quoril::Core::RangeProperty<int> pinCount_;
    Quoril::Core::RangeProperty<int> calibPinCount_;

    // State, guarded by guard_: a call holds it, an edit raises its busy count.
    Filters::FilterGuard guard_;
    SensorFile::SensorFileWriter writer_;
    SensorFile::SensorFileConfig config_;
    std::vector<ColumnDescription> columns_;  ///< of the recording, time stamp first
    bool takesTimeStamp_ = false;             ///< whether the recording has a time-stamp column
    std::vector<double> row_;
    std::atomic<bool> isHeaderWritten_{false};

    void registerProperties();
    void showPinProperties();

    // Callbacks of properties.
    void onRecord(const bool& isOn);
    void onRecordChanged();
    void onSaveTimestamp(const bool& isOn);
    void onPinCountChanged();
    void onCalibPinCountChanged();

    // Starting and stopping.
    void openFile();
    void endFile();
    void tellRowsLeftOut() const;
    void requireNames() const;
    void setPinPropertiesWritable(bool isWritable);
    void describeColumns();

    // Processing.
    [[nodiscard]] bool isHeaderPending() const { return !isHeaderWritten_; }
    std::exception_ptr recordRow(const std::optional<HeaderSettings>& settings);
    void writeHeader(const HeaderSettings& settings);
    bool collectRow();
    void writeRow();
    void abandonFile() noexcept;
};
