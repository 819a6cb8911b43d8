#pragma once

#include "framework/CommandProperty.hpp"
#include "framework/Filter.hpp"
#include "framework/OutputPin.hpp"
#include "framework/RangeProperty.hpp"
#include "framework/StringProperty.hpp"
#include "framework/ValueProperty.hpp"
#include "host/PacedSource.hpp"
#include "host/filters/ImuModel.hpp"
#include "host/filters/RowPace.hpp"

#include <cstdint>
#include <optional>
#include <string>

#include <Eigen/Core>

namespace Quoril::Core {

/// Sends what a 9-axis inertial unit measures that is turned about in the hand: one frame a call.
///
/// For equal properties the samples are the same to the bit in every run, on every platform.
///
/// | output pin  | shape | content                                                             |
/// |-------------|-------|---------------------------------------------------------------------|
/// | "acc"       | 3 x 1 | specific force, m/s^2                                               |
/// | "gyr"       | 3 x 1 | turn rate, rad/s                                                    |
/// | "mag"       | 3 x 1 | magnetic field, microtesla                                          |
/// | "frame"     | 1 x 3 | counter 0 to 65535, then 0 again; share of frames lost, 0 to 1; Hz  |
/// | "button"    | 1 x 1 | 1 in the first of every ten seconds, else 0                         |
/// | "time"      | 1 x 1 | the time stamp, seconds                                             |
/// | "accGain"   | 3 x 3 | calibration: measured = gain x (sent - offset), the offset as a     |
/// | "accOffset" | 1 x 3 | column; likewise "gyrGain", "gyrOffset", "magGain", "magOffset"     |
///
/// Time stamps are "Start Time" + i / "Rate" for frame i. Calibration is sent before frame 0 and on
/// the command. A frame that drops out is not sent on any pin, but counted.
///
/// | property               | kind    | default | meaning                                         |
/// |------------------------|---------|---------|-------------------------------------------------|
/// | "Rate"                 | double  | 200.0   | frames per second, above 0                      |
/// | "Seed"                 | integer | 1       | chooses noise and drop-outs                     |
/// | "Count"                | range   | 0       | frames to send, without lost ones; 0: endless   |
/// | "Start Time"           | double  | 0.0     | time stamp of frame 0, seconds                  |
/// | "Acc Noise Density"    | double  | 0.0012  | m/s^2 per sqrt(Hz)                              |
/// | "Gyr Noise Density"    | double  | 0.00012 | rad/s per sqrt(Hz)                              |
/// | "Mag Noise Density"    | double  | 0.04    | microtesla per sqrt(Hz)                         |
/// | "Acc Bias"             | text    | "0"     | one number for all axes, or three; m/s^2        |
/// | "Gyr Bias"             | text    | "0"     | rad/s                                           |
/// | "Mag Bias"             | text    | "0"     | microtesla                                      |
/// | "Drop-out Probability" | double  | 0.0     | of a frame, 0 to 0.99; frame 0 is never lost    |
/// | "Raw Counts"           | boolean | false   | see below                                       |
/// | "Active"               | boolean | true    | false pauses; turns false after "Count" frames  |
/// | "Send Calibration"     | command |         | sends the six calibration matrices again        |
///
/// With "Raw Counts" the pins "acc", "gyr" and "mag" send whole numbers from -32767 to 32767, as a
/// 16-bit sensor counts, in units of 1/2048 g, 1/16.4 deg/s and 0.15 uT; larger values are clipped.
///
/// A change of "Rate" or "Seed", and "Active" set to true after the end, begin again with frame 0;
/// the other properties count from the next frame on. The default noise is that of common
/// micro-mechanical units. The noise is that of ImuNoise, the motion that of ImuMotion.
///
/// Call under the filter's synchronizer, as the host does.
class QUORIL_CORE_API FilterImuSimulator final : public Filter, public PacedSource {
 public:
    static constexpr const char* kClassName = "FilterImuSimulator";
    static constexpr const char* kAccPin = "acc";
    static constexpr const char* kGyrPin = "gyr";
    static constexpr const char* kMagPin = "mag";
    static constexpr const char* kFramePin = "frame";
    static constexpr const char* kButtonPin = "button";
    static constexpr const char* kTimePin = "time";
    static constexpr const char* kAccGainPin = "accGain";
    static constexpr const char* kAccOffsetPin = "accOffset";
    static constexpr const char* kGyrGainPin = "gyrGain";
    static constexpr const char* kGyrOffsetPin = "gyrOffset";
    static constexpr const char* kMagGainPin = "magGain";
    static constexpr const char* kMagOffsetPin = "magOffset";

    static constexpr const char* kRate = "Rate";
    static constexpr const char* kSeed = "Seed";
    static constexpr const char* kCount = "Count";
    static constexpr const char* kStartTime = "Start Time";
    static constexpr const char* kAccNoiseDensity = "Acc Noise Density";
    static constexpr const char* kGyrNoiseDensity = "Gyr Noise Density";
    static constexpr const char* kMagNoiseDensity = "Mag Noise Density";
    static constexpr const char* kAccBias = "Acc Bias";
    static constexpr const char* kGyrBias = "Gyr Bias";
    static constexpr const char* kMagBias = "Mag Bias";
    static constexpr const char* kDropOutProbability = "Drop-out Probability";
    static constexpr const char* kRawCounts = "Raw Counts";
    static constexpr const char* kActive = "Active";
    static constexpr const char* kSendCalibration = "Send Calibration";

    /// Units per count of "Raw Counts": ranges of 16 g, 2000 deg/s and 4912 uT.
    static constexpr double kAccPerCount = 9.80665 / 2048.0;
    static constexpr double kGyrPerCount = 3.141592653589793 / 180.0 / 16.4;
    static constexpr double kMagPerCount = 0.15;
    static constexpr double kMaxDropOut = 0.99;

    explicit FilterImuSimulator(const std::string& name);
    ~FilterImuSimulator() override;

    void process() override;
    [[nodiscard]] const char* getClassName() const override { return kClassName; }
    [[nodiscard]] std::optional<double> getNextDueTime() const override;
    [[nodiscard]] bool isFinished() const override;

 private:
    using Pin = OutputPin<Eigen::MatrixXd>;

    void shapePins();
    void registerProperties();
    void attachHandlers();

    // Refuse values that make no sense, before they are stored.
    void checkRate(const double& rate);
    void checkStartTime(const double& time);
    void checkDensity(const double& density);
    void checkBias(const std::string& text);
    void checkDropOut(const double& probability);

    void onRate();
    void onActive(const bool& isActive);
    void onSendCalibration();
    void takeErrors();
    void restart();

    void sendFrame();
    void sendVector(Pin& pin, const ImuVector& values, double timeStamp);
    void sendCalibration();
    void sendCalibrationOf(Pin& gain, Pin& offset, const ImuSensorSettings& sensor);
    [[nodiscard]] double getTimeStamp() const;
    [[nodiscard]] bool hasEnded() const;

    Pin acc_;
    Pin gyr_;
    Pin mag_;
    Pin frame_;
    Pin button_;
    Pin time_;
    Pin accGain_;
    Pin accOffset_;
    Pin gyrGain_;
    Pin gyrOffset_;
    Pin magGain_;
    Pin magOffset_;

    ValueProperty<double> rate_;
    ValueProperty<int> seed_;
    RangeProperty<int> count_;
    ValueProperty<double> startTime_;
    ValueProperty<double> accDensity_;
    ValueProperty<double> gyrDensity_;
    ValueProperty<double> magDensity_;
    StringProperty accBias_;
    StringProperty gyrBias_;
    StringProperty magBias_;
    ValueProperty<double> dropOut_;
    ValueProperty<bool> rawCounts_;
    ValueProperty<bool> active_;
    CommandProperty sendCalibration_;

    // What the properties say, at hand for every frame.
    ImuSettings settings_;
    std::uint64_t limit_ = 0;
    double start_ = 0.0;
    bool isActive_ = true;

    ImuModel model_;
    std::uint64_t sent_ = 0;
    bool isCalibrationDue_ = true;
    RowPace pace_;
};

}  // namespace Quoril::Core
