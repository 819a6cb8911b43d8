#pragma once

#include "filters/common/CalibOutputs.hpp"
#include "filters/common/FilterGuard.hpp"
#include "filters/kivra2/FrameLossTracker.hpp"
#include "filters/kivra2/FramePacing.hpp"
#include "framework/FileNameProperty.hpp"
#include "framework/Filter.hpp"
#include "framework/RangeProperty.hpp"
#include "sensorfile/SensorFileConfig.hpp"
#include "sensorfile/SensorFileReader.hpp"

#include <optional>
#include <string>
#include <vector>

/// Replays a recording of one Kivra2 inertial unit onto pins of the names that the unit's recorder
/// has, one row a processing call.
///
/// Life: set "Load File" (which makes the gyroscope's pins if the file has its columns), connect
/// the pins, set "Replay" to true, let the host call process(). At the end of the file "Replay"
/// turns false, unless "AutoReplay" begins it anew.
///
/// Samples and offsets are 1 x 3, gains 3 x 3, buttons 1 x 1, frame numbers 1 x 3 (counter, share
/// of lost frames, Hz). Calibrations come from the file's records of the right name and shape, else
/// they change nothing (gain identity, offset zero); they are sent at every call, stamped with
/// seconds since 1970. Everything else is stamped with the replay time, which begins at 0 s and is
/// never set back.
///
/// The call sleeps to keep the pace: "Keep file frequency" goes before "Force Ticks". Properties
/// are set from any thread, under the filter's synchronizer; process() is called by one thread at a
/// time.
class FilterReplayKivra2Format final : public Quoril::Core::Filter {
 public:
    static constexpr const char* kClassName = "FilterReplayKivra2Format";

    static constexpr const char* kLoadFile = "Load File";
    static constexpr const char* kReplay = "Replay";
    static constexpr const char* kPause = "Pause";
    static constexpr const char* kAutoReplay = "AutoReplay";
    static constexpr const char* kKeepFrequency = "Keep file frequency";
    static constexpr const char* kForceTicks = "Force Ticks";
    static constexpr const char* kSampleDelay = "SampleDelay";
    static constexpr const char* kRecordFrequency = "RecordFrequency";
    static constexpr const char* kCalibVersion = "Calib Version";

    static constexpr const char* kInvalidFormat = "File format is not valid";

    /// @param name  of this instance
    explicit FilterReplayKivra2Format(const std::string& name);
    ~FilterReplayKivra2Format() override;

    [[nodiscard]] const char* getClassName() const override;
    void process() override;

 private:
    /// The pins of one three-axis sensor.
    struct SensorOutputs {
        SensorOutputs(Quoril::Core::Filter& filter, const char* sampleName, const char* gainName,
                      const char* offsetName);
        void reset();
        /// Takes the records of these names that have the pins' shapes.
        void fillCalib(const SensorFile::SensorFileConfig& config, const char* gainName,
                       const char* offsetName);
        void fillSample(const double* values);
        void sendCalib(double timeStamp);

        Filters::MatrixOutputPin sample;
        Filters::MatrixOutputPin gain;
        Filters::MatrixOutputPin offset;
    };

    /// What a call takes from properties: read before the mutex is taken.
    struct CallSettings {
        FramePacing::Settings pacing;
        bool repeats = false;
    };

    // Pins.
    SensorOutputs acc_;
    SensorOutputs mag_;
    Filters::MatrixOutputPin frameNumber_;
    Filters::MatrixOutputPin button_;
    std::optional<SensorOutputs> gyr_;  ///< while the file has the gyroscope's columns

    // Properties.
    Quoril::Core::FileNameProperty loadFile_;
    Quoril::Core::ValueProperty<bool> replay_;
    Quoril::Core::ValueProperty<bool> pause_;
    Quoril::Core::ValueProperty<bool> autoReplay_;
    Quoril::Core::ValueProperty<bool> keepFrequency_;
    Quoril::Core::ValueProperty<bool> forceTicks_;
    Quoril::Core::RangeProperty<int> sampleDelay_;
    Quoril::Core::ValueProperty<double> recordFrequency_;
    Quoril::Core::ValueProperty<int> calibVersion_;

    // State, guarded by guard_: a call holds it, an edit raises its busy count.
    Filters::FilterGuard guard_;
    SensorFile::SensorFileReader reader_;
    SensorFile::SensorFileConfig config_;
    std::vector<double> row_;
    FramePacing pacing_;
    FrameLossTracker lossTracker_;
    bool isReplaying_ = false;  ///< "Replay", as the calls see it under the mutex

    void setUpProperties();
    void registerProperties();

    // Callbacks of properties.
    void onLoadFile(const std::string& file);
    void onReplay(const bool& isOn);

    // Loading.
    void load(const std::string& file);
    void reset();
    void openFile(const std::string& file);
    void makeGyroPins();
    void fillCalib();
    void setControlsWritable(bool isLoaded);

    // Processing.
    [[nodiscard]] CallSettings readSettings() const;
    bool replayRow(const CallSettings& settings);
    void sendCalib();
    void playRow(const FramePacing::Settings& settings);
    void fillRow(double frequency);
    void sendRow();
};
