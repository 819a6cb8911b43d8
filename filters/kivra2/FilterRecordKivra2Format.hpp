#pragma once

#include "filters/common/FilterGuard.hpp"
#include "filters/common/InputPinMva.hpp"
#include "framework/FileNameProperty.hpp"
#include "framework/Filter.hpp"
#include "framework/RangeProperty.hpp"
#include "sensorfile/SensorFileConfig.hpp"
#include "sensorfile/SensorFileWriter.hpp"

#include <array>
#include <cstdint>
#include <exception>
#include <optional>
#include <string>

#include <Eigen/Core>

/// Records the samples of one Kivra2 inertial unit into a binary sensor file of fixed layout, one
/// row a processing call.
///
/// Life: set "Save Gyro" and "File Name", connect the pins, set "Record" to true, let the host call
/// process(), set "Record" to false. The file is created when "Record" becomes true; its header is
/// written with the first row, with the calibration matrices that wait then or, if none do, those
/// of an earlier recording.
///
/// A row needs a sample of the accelerometer, the magnetometer, the buttons, with "Save Gyro" the
/// gyroscope, and of the frame number if that is connected. MATRICES ARE WRITTEN WHOLE: one of
/// other than three elements moves every later value of the file.
///
/// A recording with the gyroscope's calibration but without the other two is not replayed: its two
/// records fit no layout. When the file cannot take more (a full disk), the recording ends: the
/// file is closed after its last whole row, the cause is logged, and "Record" turns false.
///
/// Properties are set from any thread, under the filter's synchronizer; process() is called by one
/// thread at a time.
class FilterRecordKivra2Format final : public Quoril::Core::Filter {
 public:
    static constexpr const char* kClassName = "FilterRecordKivra2Format";

    static constexpr const char* kFileName = "File Name";
    static constexpr const char* kRecord = "Record";
    static constexpr const char* kPause = "Pause";
    static constexpr const char* kSaveGyro = "Save Gyro";
    static constexpr const char* kDoublePrecision = "Double Precision";
    static constexpr const char* kCalibVersion = "Calib Version";

    static constexpr int kMaxPrecision = 20;
    /// Samples that a pin keeps while the filter is not called.
    static constexpr unsigned kDataBuffer = 256;

    /// @param name  of this instance
    explicit FilterRecordKivra2Format(const std::string& name);
    ~FilterRecordKivra2Format() override;

    [[nodiscard]] const char* getClassName() const override;
    void process() override;

 private:
    /// The pins of one three-axis sensor.
    struct SensorInputs {
        SensorInputs(Quoril::Core::Filter& filter, const char* sampleName, const char* gainName,
                     const char* offsetName);
        Filters::MatrixInputPin sample;
        Filters::MatrixInputPin gain;
        Filters::MatrixInputPin offset;
    };

    /// The last matrices of a sensor that could be used; empty until there are some.
    struct SensorCalib {
        Eigen::MatrixXd gain;
        Eigen::MatrixXd offset;
        void forgetUnconnected(const SensorInputs& inputs);
        [[nodiscard]] bool isKnown() const { return gain.size() > 0 && offset.size() > 0; }
    };

    // Pins.
    SensorInputs acc_;
    SensorInputs mag_;
    Filters::MatrixInputPin frameNumber_;
    Filters::MatrixInputPin button_;
    std::optional<SensorInputs> gyr_;  ///< while the gyroscope is recorded

    // Properties.
    Quoril::Core::FileNameProperty fileName_;
    Quoril::Core::ValueProperty<bool> record_;
    Quoril::Core::ValueProperty<bool> pause_;
    Quoril::Core::ValueProperty<bool> saveGyro_;
    Quoril::Core::RangeProperty<int> precision_;
    Quoril::Core::ValueProperty<int> calibVersion_;

    // State, guarded by guard_: a call holds it, an edit raises its busy count.
    Filters::FilterGuard guard_;
    SensorFile::SensorFileWriter writer_;
    SensorFile::SensorFileConfig config_;  ///< has the columns from the start
    SensorCalib accCalib_;
    SensorCalib magCalib_;
    SensorCalib gyrCalib_;
    bool isHeaderWritten_ = false;

    void setUpProperties();

    // Callbacks of properties.
    void onRecord(const bool& isOn);
    void onRecordChanged();
    void onSaveGyro(const bool& isOn);

    // Starting and stopping.
    void startFile();
    void endFile();
    void abandonFile() noexcept;

    // Processing.
    std::exception_ptr recordRow(bool isPaused);
    void takeRow(bool isPaused);
    [[nodiscard]] bool fetchAll();
    [[nodiscard]] std::optional<std::uint16_t> takeFrameCounter();
    void writeRow(std::uint16_t counter, const Filters::MatrixSample& acc,
                  const Filters::MatrixSample& mag, const Filters::MatrixSample* gyr,
                  const Filters::MatrixSample& button);

    // The header.
    void writeHeader();
    void addAccMagCalib();
    void addGyrCalib();
    void addRecords(const SensorCalib& calib, const char* gainName, const char* offsetName);
    [[nodiscard]] double peekFrequency();
};
