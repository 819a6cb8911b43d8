#pragma once

#include "sensorfile/SensorFileConfig.hpp"
#include "tools/gen/RandomNumbers.hpp"
#include "tools/gen/SyntheticMotion.hpp"
#include "tools/recording/Row.hpp"

#include <cstddef>
#include <cstdint>

#include <Poco/DateTime.h>

namespace SensorFileTool {

/// What a synthetic recording is to be like.
struct SyntheticOptions {
    enum class Layout {
        kImu,     ///< COUNT, TIME in seconds, ACC, GYR, MAG in m/s^2, rad/s, uT
        kCounts,  ///< COUNT, TIME_NS, the same axes as raw counts, with calibration records
        kKivra2,  ///< the columns and records of a Kivra2 unit with gyroscope
    };

    Layout layout = Layout::kImu;
    double frequency = 200.0;  ///< Hz
    double lostShare = 0.0;    ///< of the frames, 0 to less than 1
    double jitter = 0.0;       ///< seconds that a time stamp is early or late at most
    std::uint64_t seed = 1;
    Poco::DateTime start;  ///< of the recording, and its date
};

/// Makes up the rows of a recording, the same for the same options on every machine. Frames that
/// are lost leave no row, but count and take their time.
class SyntheticRecording {
 public:
    explicit SyntheticRecording(const SyntheticOptions& options);

    [[nodiscard]] const SensorFile::SensorFileConfig& getConfig() const { return config_; }

    /// Goes on to the next frame.
    /// @return whether it was recorded
    bool next();
    /// The frame's row, if it was recorded.
    [[nodiscard]] const Row& row() const { return row_; }

 private:
    /// One sensor of three axes.
    struct Sensor {
        const SyntheticMotion::Vector SyntheticMotion::Sample::*quantity;
        std::int64_t noise;                  ///< standard deviation, in the quantity's unit
        std::int64_t unit;                   ///< of the column, in units of the quantity
        std::array<std::int64_t, 3> scale;   ///< counts per unit of the column
        std::array<std::int64_t, 3> offset;  ///< counts
    };

    static const Sensor kAcc;
    static const Sensor kGyr;
    static const Sensor kMag;

    void defineColumns();
    void addRecords();
    void addRecords(const Sensor& sensor, const char* gain, const char* offset);
    std::size_t fillSensor(const Sensor& sensor, const SyntheticMotion::Sample& sample,
                           std::size_t column);
    void fillRow();
    [[nodiscard]] std::int64_t nanosecondsOf(std::uint64_t frame);
    [[nodiscard]] double buttonsOf(std::uint64_t frame) const;

    SyntheticOptions options_;
    RandomNumbers random_;
    SyntheticMotion motion_;
    SensorFile::SensorFileConfig config_;
    Row row_;
    std::uint64_t lostBelow_;
    std::int64_t startNanoseconds_;
    std::uint64_t frame_ = 0;
};

}  // namespace SensorFileTool
