#pragma once

#include "filters/common/InputPinMva.hpp"
#include "framework/FileNameProperty.hpp"
#include "framework/Filter.hpp"
#include "framework/ValueProperty.hpp"

#include <string>

/// Saves the calibration of one Kivra2 inertial unit into a file of its own.
///
/// Life: connect the pins, set "Version", set "Save File": each time the file is written anew. A
/// matrix that waits on a pin is taken for this one save; pins without any give a gain of the
/// identity and an offset of zeros. MATRICES ARE WRITTEN WITH THE SHAPE THAT THEY HAVE: others than
/// 3 x 3 and 1 x 3 move what follows in the file.
///
/// Properties are set from any thread, under the filter's synchronizer.
class FilterKivra2CalibWriter final : public Quoril::Core::Filter {
 public:
    static constexpr const char* kClassName = "FilterKivra2CalibWriter";

    static constexpr const char* kSaveFile = "Save File";
    static constexpr const char* kVersion = "Version";

    /// @param name  of this instance
    explicit FilterKivra2CalibWriter(const std::string& name);
    ~FilterKivra2CalibWriter() override;

    [[nodiscard]] const char* getClassName() const override;
    /// Does nothing: matrices wait on the pins.
    void process() override;

 private:
    // Pins.
    Filters::MatrixInputPin accGain_;
    Filters::MatrixInputPin accOffset_;
    Filters::MatrixInputPin magGain_;
    Filters::MatrixInputPin magOffset_;
    Filters::MatrixInputPin gyrGain_;
    Filters::MatrixInputPin gyrOffset_;

    // Properties.
    Quoril::Core::FileNameProperty saveFile_;
    Quoril::Core::ValueProperty<short> version_;

    // Callbacks of properties.
    void onSaveFile(const std::string& file);
};
