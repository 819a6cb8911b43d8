#pragma once

#include "filters/common/CalibInputs.hpp"
#include "framework/CommandProperty.hpp"
#include "framework/FileNameProperty.hpp"
#include "framework/Filter.hpp"
#include "framework/RangeProperty.hpp"

#include <string>

/// Saves the calibration matrices that arrive on its pins into a sensor file without samples.
///
/// Life: set "Calib Pins Number" and the pins' properties, "Binary" and "File Name", connect the
/// pins, trigger "Save" as often as wanted. Each save writes the file anew, with the newest matrix
/// of every connected pin, or the one that it had at the save before; pins without any are left
/// out.
///
/// Properties are set, and "Save" is triggered, from any thread, under the filter's synchronizer.
class FilterCalibSensorFileWriter final : public Quoril::Core::Filter {
 public:
    static constexpr const char* kClassName = "FilterCalibSensorFileWriter";

    static constexpr const char* kBinary = "Binary";
    static constexpr const char* kFileName = "File Name";
    static constexpr const char* kSave = "Save";
    static constexpr const char* kCalibVersion = "Calib Version";
    static constexpr const char* kCalibPinsNumber = "Calib Pins Number";

    static constexpr const char* kBadCalibType =
        "Calib type is not compatible with Calibration file format";

    static constexpr int kMaxPins = 20;
    /// Written into every file after "Calib version:".
    static constexpr int kCalibFormat = 2;

    /// @param name  of this instance
    explicit FilterCalibSensorFileWriter(const std::string& name);
    ~FilterCalibSensorFileWriter() override;

    [[nodiscard]] const char* getClassName() const override;
    /// Does nothing: matrices wait on the pins.
    void process() override;

 private:
    Filters::CalibInputs calibInputs_;

    Quoril::Core::ValueProperty<bool> binary_;
    Quoril::Core::FileNameProperty fileName_;
    Quoril::Core::CommandProperty save_;
    Quoril::Core::ValueProperty<int> calibVersion_;
    Quoril::Core::RangeProperty<int> calibPinCount_;

    void registerProperties();

    // Callbacks of properties.
    void onSave();
    void onCalibPinCountChanged();
};
