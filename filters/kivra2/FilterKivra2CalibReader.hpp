#pragma once

#include "filters/common/CalibOutputs.hpp"
#include "framework/CommandProperty.hpp"
#include "framework/FileNameProperty.hpp"
#include "framework/Filter.hpp"
#include "framework/StringProperty.hpp"
#include "framework/ValueProperty.hpp"
#include "sensorfile/Kivra2Calib.hpp"

#include <string>

/// Loads a calibration file of one Kivra2 inertial unit and sends its matrices, in place of the
/// unit.
///
/// Life: connect the pins, set "Load File", which sends all six matrices at once; trigger "Flush"
/// to send them again. Before any load, and after one that failed, gains are the identity and
/// offsets zero. Time stamps are seconds since 1 January 1970, UTC.
///
/// "Date/Time Calib" SHOWS THE MONTH IN THE PLACE OF THE DAY: month/month/year, hour:minute:second.
///
/// Properties are set, and "Flush" is triggered, from any thread, under the filter's synchronizer.
class FilterKivra2CalibReader final : public Quoril::Core::Filter {
 public:
    static constexpr const char* kClassName = "FilterKivra2CalibReader";

    static constexpr const char* kLoadFile = "Load File";
    static constexpr const char* kVersion = "Version";
    static constexpr const char* kDateTime = "Date/Time Calib";
    static constexpr const char* kFlush = "Flush";

    static constexpr const char* kCorrupted = "Impossible to read data, file is corrupted";

    /// Shown until a file is loaded.
    static constexpr int kNoVersion = 255;
    static constexpr const char* kNoDateTime = "00/00/00, 00:00:00";

    /// @param name  of this instance
    explicit FilterKivra2CalibReader(const std::string& name);
    ~FilterKivra2CalibReader() override;

    [[nodiscard]] const char* getClassName() const override;
    /// Does nothing: matrices are sent on demand.
    void process() override;

 private:
    // Pins.
    Filters::MatrixOutputPin accGain_;
    Filters::MatrixOutputPin accOffset_;
    Filters::MatrixOutputPin magGain_;
    Filters::MatrixOutputPin magOffset_;
    Filters::MatrixOutputPin gyrGain_;
    Filters::MatrixOutputPin gyrOffset_;

    // Properties.
    Quoril::Core::FileNameProperty loadFile_;
    Quoril::Core::ValueProperty<int> version_;
    Quoril::Core::StringProperty dateTime_;
    Quoril::Core::CommandProperty flush_;

    // Callbacks of properties.
    void onLoadFile(const std::string& file);
    void onFlush();

    /// What "Flush" sends.
    SensorFile::Kivra2Calib calib_;
};
