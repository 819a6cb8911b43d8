#pragma once

#include "filters/common/FilterGuard.hpp"
#include "filters/sensorfile/ReplayOutputs.hpp"
#include "filters/sensorfile/ReplayPacing.hpp"
#include "framework/CommandProperty.hpp"
#include "framework/EnumProperty.hpp"
#include "framework/FileNameProperty.hpp"
#include "framework/Filter.hpp"
#include "framework/RangeProperty.hpp"
#include "framework/StringProperty.hpp"
#include "sensorfile/SensorFileConfig.hpp"
#include "sensorfile/SensorFileReader.hpp"

#include <cstddef>
#include <optional>
#include <string>
#include <vector>

/// Replays a sensor file onto output pins, one row a processing call.
///
/// Life: set the properties above "Load File", set "Load File" (which makes the pins), connect the
/// pins, set "Replay" to true, let the host call process(). At the end of the file "Replay" turns
/// false, unless "AutoReplay" begins it anew. Calibration pins send once, at each start.
///
/// A data pin of n columns sends an n x 1 matrix. The replay time, the time stamp of what is sent,
/// begins at 0 s and is never set back; with "FrameNumber" pacing a restarted file is therefore in
/// the past, and its time-stamp column is no longer used.
///
/// The call sleeps to keep the pace. Properties are set from any thread, under the filter's
/// synchronizer; process() is called by one thread at a time.
class FilterReplaySensorFile final : public Quoril::Core::Filter {
 public:
    static constexpr const char* kClassName = "FilterReplaySensorFile";

    static constexpr const char* kAutoDetect = "Auto Detect Output";
    static constexpr const char* kMinSize = "MinSize AutoDetectName";
    static constexpr const char* kColumnNames = "Manually Set ColsName";
    static constexpr const char* kCalibNames = "Manually Set Calibs Name";
    static constexpr const char* kBinary = "Binary";
    static constexpr const char* kLoadFile = "Load File";
    static constexpr const char* kReloadFile = "Reload File";
    static constexpr const char* kFrequency = "Frequency";
    static constexpr const char* kCalibVersion = "Calib Version";
    static constexpr const char* kReplay = "Replay";
    static constexpr const char* kPause = "Pause";
    static constexpr const char* kAutoReplay = "AutoReplay";
    static constexpr const char* kTimeStampMode = "TimeStampMode";
    static constexpr const char* kEnableFileTimeStamp = "EnableFileTimeStamp";
    static constexpr const char* kTimeStampColName = "TimeStampColName";
    static constexpr const char* kSampleDelay = "SampleDelay";
    static constexpr const char* kQuickProcess = "QuickProcess";

    static constexpr const char* kTicks = "Ticks";
    static constexpr const char* kFrameNumber = "FrameNumber";
    /// The time-stamp column that is looked for when no other is named, or the named one is absent.
    static constexpr const char* kDefaultTimeStampColumn = "COUNT";

    static constexpr const char* kInvalidFormat = "File format is not valid";
    static constexpr const char* kNeedsReload =
        "parameters has changed, you must Load/Reload your file!";

    /// @param name  of this instance
    explicit FilterReplaySensorFile(const std::string& name);
    ~FilterReplaySensorFile() override;

    [[nodiscard]] const char* getClassName() const override;
    void process() override;

 private:
    /// What a call leaves to be done to properties once the mutex is released.
    struct Aftermath {
        bool endsReplay = false;
        bool endsFileTime = false;
    };

    // Pins.
    ReplayOutputs outputs_;

    // Properties.
    Quoril::Core::ValueProperty<bool> autoDetect_;
    Quoril::Core::RangeProperty<int> minSize_;
    Quoril::Core::StringProperty columnNames_;
    Quoril::Core::StringProperty calibNames_;
    Quoril::Core::ValueProperty<bool> binary_;
    Quoril::Core::FileNameProperty loadFile_;
    Quoril::Core::CommandProperty reloadFile_;
    Quoril::Core::ValueProperty<double> frequency_;
    Quoril::Core::ValueProperty<int> calibVersion_;
    Quoril::Core::ValueProperty<bool> replay_;
    Quoril::Core::ValueProperty<bool> pause_;
    Quoril::Core::ValueProperty<bool> autoReplay_;
    Quoril::Core::EnumProperty<std::string> timeStampMode_;
    Quoril::Core::ValueProperty<bool> enableFileTimeStamp_;
    Quoril::Core::StringProperty timeStampColName_;
    Quoril::Core::RangeProperty<int> sampleDelay_;
    Quoril::Core::ValueProperty<bool> quickProcess_;

    // State, guarded by guard_: a call holds it, an edit raises its busy count.
    Filters::FilterGuard guard_;
    SensorFile::SensorFileReader reader_;
    SensorFile::SensorFileConfig config_;
    std::vector<double> row_;
    ReplayPacing pacing_;
    ReplayPacing::Settings pacingSettings_;  ///< noted at the start: locked while replaying
    bool repeats_ = false;                   ///< "AutoReplay", noted likewise
    std::string timeStampColumn_ = kDefaultTimeStampColumn;
    std::optional<std::size_t> timeStampPin_;
    bool needsReload_ = false;
    bool isReplaying_ = false;  ///< "Replay", as the calls see it under the mutex

    void setUpProperties();
    void registerProperties();
    void attachCallbacks();

    // Callbacks of properties.
    void onAutoDetect(const bool& isOn);
    void onLoadFile(const std::string& file);
    void onReloadFile();
    void onReplay(const bool& isOn);
    void onTimeStampColName(const std::string& names);

    // Loading.
    void load(const std::string& file);
    void showHeader();
    void makeOutputs();
    void removeOutputs();
    void forgetFile();
    void unlockLoaded(bool isLoaded);

    // Starting and stopping.
    void startReplay();
    void noteSettings();
    void setConfigurationWritable(bool isWritable);

    // Processing.
    Aftermath replayRow();
    void findTimeStampPin(Aftermath& aftermath);
    void sendRow(Aftermath& aftermath);
    void apply(const Aftermath& aftermath) noexcept;
};
