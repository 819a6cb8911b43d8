#pragma once

#include "filters/common/CalibOutputs.hpp"
#include "framework/CommandProperty.hpp"
#include "framework/FileNameProperty.hpp"
#include "framework/Filter.hpp"
#include "framework/StringProperty.hpp"
#include "sensorfile/SensorFileConfig.hpp"

#include <string>

/// Offers the calibration records of a sensor file on output pins and sends them on demand.
///
/// Life: set the properties above "Load File", set "Load File" (which makes the pins), connect the
/// pins, trigger "Flush" as often as wanted. A recording may be loaded as well as a file of
/// calibration records alone.
///
/// A failed load leaves no pins. Time stamps are seconds since 15 October 1582, UTC. Properties are
/// set, and "Flush" is triggered, from any thread, under the filter's synchronizer.
class FilterCalibSensorFileReader final : public Quoril::Core::Filter {
 public:
    static constexpr const char* kClassName = "FilterCalibSensorFileReader";

    static constexpr const char* kAutoDetect = "Auto Detect Calibration Coefficients";
    static constexpr const char* kCalibNames = "Manually Set Calibration Coefficients";
    static constexpr const char* kBinary = "Binary";
    static constexpr const char* kLoadFile = "Load File";
    static constexpr const char* kFlush = "Flush";
    static constexpr const char* kCalibVersion = "Calib Version";

    static constexpr const char* kMissingRecord =
        "Impossible to find one or more Coeff(s) in the calibration file";

    /// @param name  of this instance
    explicit FilterCalibSensorFileReader(const std::string& name);
    ~FilterCalibSensorFileReader() override;

    [[nodiscard]] const char* getClassName() const override;
    /// Does nothing: matrices are sent on demand.
    void process() override;

 private:
    Filters::MatrixOutputPins pins_;

    Quoril::Core::ValueProperty<bool> autoDetect_;
    Quoril::Core::StringProperty calibNames_;
    Quoril::Core::ValueProperty<bool> binary_;
    Quoril::Core::FileNameProperty loadFile_;
    Quoril::Core::CommandProperty flush_;
    Quoril::Core::ValueProperty<int> calibVersion_;

    std::string path_;       ///< of the last file that could be opened
    bool isLoaded_ = false;  ///< a load was tried: "Flush" does not try again

    void registerProperties();

    // Callbacks of properties.
    void onAutoDetect(const bool& isOn);
    void onLoadFile(const std::string& file);
    void onFlush();

    // Loading.
    void load(const std::string& file);
    [[nodiscard]] Filters::MatrixOutputPins makePins(const SensorFile::SensorFileConfig& config);
};
