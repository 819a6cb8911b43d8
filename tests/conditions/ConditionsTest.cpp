#include "host/filters/BuiltinPlugin.hpp"
#include "sensorfile/SensorFileReader.hpp"
#include "sensorfile/SensorFileWriter.hpp"
#include "tests/conditions/WallClock.hpp"
#include "tests/flows/ModuleFixture.hpp"

#include <clocale>
#include <cstdlib>
#include <ctime>
#include <functional>
#include <locale>
#include <optional>
#include <regex>
#include <thread>

// What is recorded and replayed does not depend on the wall clock, the time zone and the locale of
// the process, but for the dates in the headers.

using Quoril::Core::Filter;
using Quoril::Core::Flow;
using Quoril::Core::LayoutManager;
using Quoril::Core::TestSink;
using Quoril::Core::waitFor;
namespace WallClock = Conditions::WallClock;

namespace {

constexpr int kRows = 2000;

void setVariable(const char* name, const std::optional<std::string>& value) {
    if (value)
        setenv(name, value->c_str(), 1);
    else
        unsetenv(name);
    tzset();
}

/// What is around a recording or a replay, from before it starts until after it has ended.
class Surroundings {
 public:
    explicit Surroundings(const std::string& name) {
        for (const char* variable : {"TZ", "LOCPATH", "LC_ALL"})
            before_.emplace_back(variable, valueOf(variable));
        localeBefore_ = std::locale();
        setUp(name);
    }
    ~Surroundings() {
        WallClock::restore();
        std::locale::global(localeBefore_);
        std::setlocale(LC_ALL, "C");
        for (const auto& [variable, value] : before_)
            setVariable(variable, value);
    }
    Surroundings(const Surroundings&) = delete;
    Surroundings& operator=(const Surroundings&) = delete;

    /// What happens in the middle.
    std::function<void()> midway = [] {};

 private:
    static std::optional<std::string> valueOf(const char* variable) {
        const char* const value = std::getenv(variable);
        return value == nullptr ? std::nullopt : std::optional<std::string>(value);
    }

    void setUp(const std::string& name) {
        if (name == "ClockSetBack") midway = [] { WallClock::step(std::chrono::hours(-25)); };
        if (name == "ClockSetForward") midway = [] { WallClock::step(std::chrono::hours(25)); };
        if (name == "BeforeAllDates") WallClock::setTo({1970, 1, 1, 0, 0, 5});
        if (name == "LeapSecond") {
            // The second is counted twice, as systems do it.
            WallClock::setTo({2016, 12, 31, 23, 59, 59});
            midway = [] { WallClock::step(std::chrono::seconds(-1)); };
        }
        if (name == "OtherZone") {
            setVariable("TZ", "Pacific/Auckland");
            const std::time_t summer = 1484000000;
            std::tm time{};
            ASSERT_EQ(localtime_r(&summer, &time)->tm_gmtoff, 13 * 3600) << "no such zone";
        }
        if (name == "CommaLocale") setLocale();
    }

    static void setLocale() {
        setVariable("LOCPATH", LOCALE_FOLDER);
        setVariable("LC_ALL", "de_DE.UTF-8");
        ASSERT_NE(std::setlocale(LC_ALL, ""), nullptr) << "the locale was not made";
        std::locale::global(std::locale(""));
        ASSERT_STREQ(std::localeconv()->decimal_point, ",");
    }

    std::vector<std::pair<const char*, std::optional<std::string>>> before_;
    std::locale localeBefore_;
};

/// The file with its dates replaced, which are the only thing that may differ.
std::string withoutDates(const std::string& path, bool binary) {
    std::string content = Support::readBytes(path);
    if (!binary) {
        static const std::regex kDate(R"(\d\d/\d\d/\d{4}\t\d\d:\d\d:\d\d)");
        return std::regex_replace(content, kDate, "date");
    }
    constexpr std::size_t kDateOffset = 24;
    constexpr std::size_t kDateSize = 6;
    const auto byteAt = [&](std::size_t i) { return static_cast<unsigned char>(content.at(i)); };
    const std::size_t columns = std::size_t{byteAt(38)} * 256 + byteAt(39);
    for (const std::size_t section : {std::size_t{0}, 40 + 34 * columns})
        content.replace(section + kDateOffset, kDateSize, kDateSize, '-');
    return content;
}

}  // namespace

class ConditionsTest : public ModuleFixture, public testing::WithParamInterface<const char*> {
 protected:
    ConditionsTest() { Quoril::Core::installBuiltinPlugin(); }

    /// Calls `midway` on the flow's thread when half of the rows have come to a sink.
    static TestSink& addWatch(Flow& flow, LayoutManager& layout, int rows,
                              const std::function<void()>& midway) {
        auto& watch = dynamic_cast<TestSink&>(flow.addFilter("TestSink", "watch", layout));
        watch.onProcess = [&watch, rows, midway] {
            watch.passOne();
            if (watch.calls == rows / 2) midway();
        };
        return watch;
    }

    static void connect(Flow& flow, Filter& from, const std::string& output, Filter& to,
                        const std::string& input) {
        flow.connect(*from.findOutputPin(output), *to.findInputPin(input));
    }

    static void addColumns(Filter& recorder) {
        Harness rec(recorder);
        rec.set("Save Timestamp", true);
        rec.set("TimeStampColName", "TIME");
        rec.set("Freq", 819.2);
        rec.set("Pins Number", 2);
        rec.set("Calib Pins Number", 2);
        rec.set("ColNames#1", "COUNT, LOSS, RATE");
        rec.choose("ColTypes#1", "UINT32");
        rec.set("ColNames#2", "ACCX, ACCY, ACCZ");
        rec.choose("ColTypes#2", "DOUBLE");
        rec.set("CalibColNames#1", "AccGain");
        rec.set("CalibColNames#2", "AccOffset");
    }

    /// Records the same samples in both encodings and as a unit's recording.
    void record(const std::string& name, const std::function<void()>& midway) {
        Flow flow;
        LayoutManager& layout = flow.addLayout("main");
        Filter& source = flow.addFilter("FilterImuSimulator", "source", layout);
        Harness(source).set("Count", kRows);
        Harness(source).set("Rate", 819.2);
        Harness(source).set("Acc Bias", "0.125 -1234.5 0.000321");
        std::vector<Filter*> recorders;
        for (const bool isBinary : {true, false}) {
            Filter& recorder =
                flow.addFilter("FilterRecordSensorFile", isBinary ? "binary" : "text", layout);
            addColumns(recorder);
            connect(flow, source, "time", recorder, "TimeStampPin");
            connect(flow, source, "frame", recorder, "input#1");
            connect(flow, source, "acc", recorder, "input#2");
            connect(flow, source, "accGain", recorder, "calibInput#1");
            connect(flow, source, "accOffset", recorder, "calibInput#2");
            startRecording(recorder, pathOf(name, isBinary), isBinary);
            recorders.push_back(&recorder);
        }
        Filter& unit = flow.addFilter("FilterRecordKivra2Format", "unit", layout);
        for (const auto& [output, input] : {std::pair("acc", "3a"),
                                            {"accGain", "3aGain"},
                                            {"accOffset", "3aOff"},
                                            {"mag", "3m"},
                                            {"magGain", "3mGain"},
                                            {"magOffset", "3mOff"},
                                            {"frame", "FrameNumber"},
                                            {"button", "Button"}})
            connect(flow, source, output, unit, input);
        Harness(unit).set("File Name", pathOf(name + "-unit", true));
        Harness(unit).set("Record", true);
        recorders.push_back(&unit);
        TestSink& watch = addWatch(flow, layout, kRows, midway);
        connect(flow, source, "time", watch, "input");
        useMaximumPace(flow);
        flow.start();
        EXPECT_TRUE(waitFor([&] { return flow.isFinished(); }));
        flow.stop();
        for (Filter* recorder : recorders)
            Harness(*recorder).set("Record", false);
        expectNothingLost(flow);
        EXPECT_EQ(watch.received.size(), std::size_t{kRows});
    }

    std::string pathOf(const std::string& name, bool isBinary) const {
        return folder.file(name + (isBinary ? ".bin" : ".txt"));
    }

    /// The values of a replay, by the time stamps of the file.
    std::vector<double> replay(const std::string& path, bool isBinary,
                               const std::function<void()>& midway) {
        Flow flow;
        LayoutManager& layout = flow.addLayout("main");
        Filter& player = addPlayer(flow, layout);
        Harness(player).choose("TimeStampMode", "FrameNumber");
        Harness(player).set("TimeStampColName", "TIME");
        loadPlayer(player, path, isBinary);
        TestSink& watch = addWatch(flow, layout, kRows, midway);
        connect(flow, player, "RATE", watch, "input");
        auto& accelerations =
            dynamic_cast<TestSink&>(flow.addFilter("TestSink", "accelerations", layout));
        connect(flow, player, "ACC", accelerations, "input");
        Harness(player).set("Replay", true);
        useMaximumPace(flow);
        flow.start();
        EXPECT_TRUE(waitUntilReplayed(player));
        flow.stop();
        expectNothingLost(flow);
        EXPECT_EQ(watch.received.size(), std::size_t{kRows});
        return accelerations.received;
    }
};

TEST_P(ConditionsTest, TheSameBytesAreRecordedButForTheDates) {
    record("plain", [] {});
    {
        const Surroundings around(GetParam());
        record("other", around.midway);
    }
    for (const char* kind : {".bin", ".txt", "-unit.bin"}) {
        const bool isBinary = std::string(kind) != ".txt";
        const std::string plain = withoutDates(folder.file("plain") + kind, isBinary);
        EXPECT_GT(plain.size(), 15U * kRows);
        EXPECT_TRUE(plain == withoutDates(folder.file("other") + kind, isBinary)) << kind;
    }
}

TEST_P(ConditionsTest, TheSameValuesAreReplayed) {
    record("plain", [] {});
    for (const bool isBinary : {true, false}) {
        const std::vector<double> expected = replay(pathOf("plain", isBinary), isBinary, [] {});
        ASSERT_EQ(expected.size(), std::size_t{kRows});
        const Surroundings around(GetParam());
        EXPECT_EQ(replay(pathOf("plain", isBinary), isBinary, around.midway), expected);
    }
}

// Filters that sleep by themselves; what happens midway happens during many of the sleeps.
TEST_P(ConditionsTest, SleepsLastAsLongAsTheyShall) {
    SensorFile::SensorFileConfig config;
    config.addColumn("COUNT", 13);
    config.addColumn("VALUE", 9);
    config.setSampleFrequency(200.0);
    const std::string path = folder.file("paced.bin");
    SensorFile::SensorFileWriter writer;
    writer.open(path, config, /*binary=*/true, /*writeHeaders=*/true);
    constexpr int kPaced = 60;
    for (int i = 0; i < kPaced; ++i)
        writer.writeRow(std::vector<double>{1.0 * i, 0.5});
    writer.close();

    const Surroundings around(GetParam());
    Flow flow;
    LayoutManager& layout = flow.addLayout("main");
    Filter& player = addPlayer(flow, layout);
    Harness(player).set("Load File", path);
    TestSink& watch = addWatch(flow, layout, kPaced, [] {});
    connect(flow, player, "VALUE", watch, "input");
    Harness(player).set("Replay", true);
    const auto start = std::chrono::steady_clock::now();
    flow.start();
    for (int i = 0; i < kPaced / 2; ++i) {
        std::this_thread::sleep_for(std::chrono::milliseconds(7));
        around.midway();
    }
    EXPECT_TRUE(waitUntilReplayed(player));
    flow.stop();
    const std::chrono::duration<double> took = std::chrono::steady_clock::now() - start;
    EXPECT_GE(took.count(), kPaced / 200.0 * 0.999);
    EXPECT_EQ(watch.received.size(), std::size_t{kPaced});
}

INSTANTIATE_TEST_SUITE_P(All, ConditionsTest,
                         testing::Values("ClockSetBack", "ClockSetForward", "BeforeAllDates",
                                         "LeapSecond", "OtherZone", "CommaLocale"),
                         [](const auto& condition) { return std::string(condition.param); });

class DateTest : public ConditionsTest {
 protected:
    Poco::DateTime creationTimeOf(const std::string& path, bool isBinary) {
        SensorFile::SensorFileReader reader;
        reader.open(path, isBinary);
        return reader.getConfig().getCreationTime();
    }
};

TEST_P(DateTest, DatesAreThoseOfTheWallClockInUtc) {
    {
        const Surroundings around(GetParam());
        WallClock::setTo({2024, 2, 29, 12, 34, 30});
        record("dated", around.midway);
    }
    const Poco::DateTime earliest(2024, 2, 29, 12, 34, 30);
    for (const bool isBinary : {true, false}) {
        const auto late =
            (creationTimeOf(pathOf("dated", isBinary), isBinary) - earliest).totalSeconds();
        EXPECT_GE(late, 0);
        EXPECT_LE(late, 60);
    }
}

INSTANTIATE_TEST_SUITE_P(All, DateTest,
                         testing::Values("ClockSetBack", "ClockSetForward", "OtherZone",
                                         "CommaLocale"),
                         [](const auto& condition) { return std::string(condition.param); });
