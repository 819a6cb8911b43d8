#include "tools/gen/GenCommand.hpp"

#include "tools/common/DateText.hpp"
#include "tools/common/EncodingOption.hpp"
#include "tools/common/ExitCode.hpp"
#include "tools/common/InputOptions.hpp"
#include "tools/common/OutputFile.hpp"
#include "tools/common/Progress.hpp"
#include "tools/common/Share.hpp"
#include "tools/common/UsageException.hpp"
#include "tools/gen/SyntheticRecording.hpp"
#include "tools/recording/SensorFileSink.hpp"

#include <cmath>
#include <cstdint>
#include <map>
#include <optional>
#include <string>

#include <CLI/App.hpp>
#include <Poco/Exception.h>

namespace SensorFileTool {

namespace {

using Layout = SyntheticOptions::Layout;

constexpr double kDefaultSeconds = 10.0;
constexpr double kMaxFrequency = 1e9;  // Hz
constexpr double kMaxJitter = 1.0;     // s
constexpr double kMaxSeconds = 5e9;    // nanoseconds of a hundred years and more fit 64 bits

const std::map<std::string, Layout>& layoutsByName() {
    static const std::map<std::string, Layout> kLayouts{
        {"imu", Layout::kImu}, {"counts", Layout::kCounts}, {"kivra2", Layout::kKivra2}};
    return kLayouts;
}

/// How long a recording is to be.
struct Length {
    std::optional<std::uint64_t> rows;    ///< that are recorded
    std::optional<std::uint64_t> frames;  ///< those that are lost included
};

class GenCommand : public Command {
 public:
    void define(CLI::App& app) override {
        app.add_option("OUT", name_, "The recording to write, or - for the standard output")
            ->required();
        CLI::Option* const rows =
            app.add_option("--rows", rows_, "Rows to write, lost frames not counted")
                ->type_name("N");
        app.add_option("--duration", seconds_, "How long it lasts; 10 s if nothing is said")
            ->type_name("SECONDS")
            ->excludes(rows);
        app.add_option("--frequency", frequency_, "Frames per second")
            ->type_name("HZ")
            ->capture_default_str();
        app.add_option("--layout", layout_,
                       "The columns. imu: floats in m/s^2, rad/s, uT; counts: raw counts with "
                       "calibration records and a 64-bit time stamp; kivra2: as a Kivra2 unit "
                       "records them")
            ->type_name("imu|counts|kivra2")
            ->check(CLI::IsMember({"imu", "counts", "kivra2"}));
        encoding_.define(app);
        app.add_option("--lose", lost_, "The share of frames to lose, e.g. 0.001 or 0.1%")
            ->type_name("SHARE");
        app.add_option("--jitter", jitter_, "How early or late a time stamp is at most, up to 1 s")
            ->type_name("SECONDS");
        app.add_option("--seed", seed_, "Another number makes another recording")
            ->type_name("N")
            ->capture_default_str();
        app.add_option("--creation-time", creationTime_,
                       "The file's date, UTC; if not given, the present time")
            ->type_name("2017-05-23T10:04:31Z");
        defineForce(app, isForced_);
        hasRows_ = rows;
        hasSeconds_ = app.get_option("--duration");
    }

    int run(Console& console) override {
        const SyntheticOptions options = getOptions();
        const Length length = getLength();
        const bool isBinary = encoding_.isBinary(name_);
        if (!isBinary && options.layout == Layout::kKivra2)
            throw UsageException("--to: recordings of Kivra2 units are always binary");
        OutputFile output(console, name_, isForced_);
        output.fill([&](const std::string& path) {
            writeRecording(console, SyntheticRecording(options), length, isBinary, path);
        });
        return kExitDone;
    }

 private:
    [[nodiscard]] SyntheticOptions getOptions() const {
        SyntheticOptions options;
        options.layout = layoutsByName().at(layout_);
        options.frequency = frequency_;
        options.lostShare = parseShare("--lose", lost_);
        options.jitter = jitter_;
        options.seed = seed_;
        if (!creationTime_.empty()) options.start = parseDate("--creation-time", creationTime_);
        if (!(frequency_ > 0.0 && frequency_ <= kMaxFrequency))
            throw UsageException("--frequency: more than 0 and at most 1e9 Hz are possible");
        if (!(jitter_ >= 0.0 && jitter_ <= kMaxJitter))
            throw UsageException("--jitter: 0 to 1 s are possible");
        if (options.lostShare == 1.0) throw UsageException("--lose: some frames must be left");
        if (jitter_ > 0.0 && options.layout == Layout::kKivra2)
            throw UsageException("--jitter: recordings of Kivra2 units have no time stamps");
        return options;
    }

    [[nodiscard]] Length getLength() const {
        const double seconds =
            hasRows_->count() > 0 ? static_cast<double>(rows_) / frequency_ : seconds_;
        if (!(seconds >= 0.0 && seconds <= kMaxSeconds))
            throw UsageException(std::string(hasSeconds_->count() > 0 ? "--duration" : "--rows") +
                                 ": 0 to 5e9 s are possible");
        Length length;
        if (hasRows_->count() > 0)
            length.rows = rows_;
        else
            length.frames = static_cast<std::uint64_t>(std::round(seconds * frequency_));
        return length;
    }

    static void writeRecording(Console& console, SyntheticRecording recording, const Length& length,
                               bool isBinary, const std::string& path) {
        SensorFileSink sink(path, recording.getConfig(), isBinary);
        Progress progress(console, "making rows", length.rows.value_or(length.frames.value_or(0)));
        std::uint64_t frames = 0;
        // No number equals a limit that is not there.
        for (std::uint64_t rows = 0; rows != length.rows && frames != length.frames; ++frames) {
            if (!recording.next()) continue;
            sink.write(recording.row());
            progress.show(++rows);
        }
        sink.finish();
    }

    std::string name_;
    std::uint64_t rows_ = 0;
    double seconds_ = kDefaultSeconds;
    double frequency_ = SyntheticOptions{}.frequency;
    std::string layout_ = "imu";
    EncodingOption encoding_;
    std::string lost_ = "0";
    double jitter_ = 0.0;
    std::uint64_t seed_ = SyntheticOptions{}.seed;
    std::string creationTime_;
    bool isForced_ = false;
    const CLI::Option* hasRows_ = nullptr;
    const CLI::Option* hasSeconds_ = nullptr;
};

}  // namespace

std::unique_ptr<Command> makeGenCommand() {
    return std::make_unique<GenCommand>();
}

}  // namespace SensorFileTool
