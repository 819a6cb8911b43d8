#include "filters/kivra2/FilterKivra2CalibReader.hpp"
#include "filters/kivra2/FilterKivra2CalibWriter.hpp"
#include "tests/filters/kivra2/Kivra2CalibBytes.hpp"
#include "tests/support/ExpectThrow.hpp"
#include "tests/support/FilterHarness.hpp"
#include "tests/support/TemporaryFolder.hpp"
#include "tests/support/TestTime.hpp"

#include <string>
#include <vector>

#include <Poco/Environment.h>
#include <Poco/Exception.h>
#include <gmock/gmock.h>

using Support::expectThrow;
using Support::matrix;
using testing::ElementsAre;
using testing::IsEmpty;

namespace {

const std::string kCorrupted = "Impossible to read data, file is corrupted";
const std::string kNoDate = "00/00/00, 00:00:00";
const std::vector<const char*> kPins = {"3aGain", "3aOff", "3mGain", "3mOff", "3gGain", "3gOff"};

}  // namespace

class Kivra2CalibReaderTest : public testing::Test {
 protected:
    Kivra2CalibReaderTest() { cal.watch(); }

    /// Matrices of the test file: gain and offset of the accelerometer, twice and three times that.
    [[nodiscard]] Eigen::MatrixXd expectedOf(std::size_t pin) const {
        const auto scale = static_cast<double>(pin / 2 + 1);
        return (pin % 2 == 0 ? gain : offset) * scale;
    }
    static Eigen::MatrixXd defaultOf(std::size_t pin) {
        if (pin % 2 == 0) return Eigen::MatrixXd::Identity(3, 3);
        return Eigen::MatrixXd::Zero(1, 3);
    }
    [[nodiscard]] std::string matrices() const {
        Kivra2CalibBytes bytes;
        for (std::size_t i = 0; i < kPins.size(); ++i)
            bytes.matrix(expectedOf(i));
        return bytes.text();
    }
    [[nodiscard]] std::string wholeFile() const {
        return Kivra2CalibBytes().date(5, 3, 17, 14, 7, 9).version(3).text() + matrices();
    }

    void load(const std::string& bytes) {
        Support::writeBytes(file, bytes);
        cal.set("Load File", file);
    }
    void expectRefused(const std::string& message, const std::string& path) {
        expectThrow<Poco::IOException>(message, [&] { cal.set("Load File", path); });
    }

    template <class Expected>
    void expectSent(double time, Expected expected) {
        for (std::size_t i = 0; i < kPins.size(); ++i) {
            const auto samples = cal.pull(kPins[i]);
            ASSERT_EQ(samples.size(), 1U) << kPins[i];
            EXPECT_EQ(samples[0].value, expected(i)) << kPins[i];
            EXPECT_EQ(samples[0].timeStamp, time) << kPins[i];
        }
    }
    void expectFileSent(double time = kNow) {
        expectSent(time, [this](std::size_t pin) { return expectedOf(pin); });
    }
    void expectDefaultsSent(double time = kNow) { expectSent(time, &defaultOf); }
    void expectNothingSent() {
        for (const char* pin : kPins)
            EXPECT_THAT(cal.pull(pin), IsEmpty()) << pin;
    }

    [[nodiscard]] int version() const { return cal.get<int>("Version"); }
    [[nodiscard]] std::string date() const { return cal.get<std::string>("Date/Time Calib"); }

    /// 23 May 2017, 10:04:31 UTC, in seconds since 1 January 1970.
    static constexpr double kNow = 1495533871.0;

    Support::FixedClock clock{Poco::DateTime(2017, 5, 23, 10, 4, 31)};
    Support::TemporaryFolder folder;
    const std::string file = folder.file("unit.cal");
    const Eigen::MatrixXd gain = matrix({{2, 0.5, 0}, {-1, 3, 7}, {0, 1e-3, 4}});
    const Eigen::MatrixXd offset = matrix({{11, -12, 13.5}});
    FilterKivra2CalibReader filter{"cal"};
    Support::FilterHarness cal{filter};
};

TEST_F(Kivra2CalibReaderTest, PinsAndPropertiesStandInTheirOrder) {
    EXPECT_THAT(cal.inputNames(), IsEmpty());
    EXPECT_THAT(cal.outputNames(),
                ElementsAre("3aGain", "3aOff", "3mGain", "3mOff", "3gGain", "3gOff"));
    EXPECT_THAT(cal.propertyNames(),
                ElementsAre("Load File", "Version", "Date/Time Calib", "Flush"));
    EXPECT_THAT(cal.lockedNames(), ElementsAre("Version", "Date/Time Calib"));
}

TEST_F(Kivra2CalibReaderTest, FreshFilterShowsThatNothingIsLoaded) {
    EXPECT_EQ(cal.get<std::string>("Load File"), "");
    EXPECT_EQ(version(), 255);
    EXPECT_EQ(date(), kNoDate);
}

TEST_F(Kivra2CalibReaderTest, WholeFileIsShownAndSentWithTheTimeOfTheLoad) {
    load(wholeFile());
    EXPECT_EQ(version(), 3);
    EXPECT_EQ(date(), "3/3/2017, 14:7:9");
    EXPECT_EQ(cal.get<std::string>("Load File"), file);
    expectFileSent();
}

TEST_F(Kivra2CalibReaderTest, FileOfTheWriterComesBack) {
    {
        const Support::FixedClock then(Poco::DateTime(2019, 12, 31, 23, 59, 58));
        FilterKivra2CalibWriter writer("writer");
        Support::FilterHarness save(writer);
        for (std::size_t i = 0; i < kPins.size(); ++i)
            save.push(kPins[i], expectedOf(i));
        save.property("Version").setAny(short{-2});
        save.set("Save File", file);
    }
    cal.set("Load File", file);
    EXPECT_EQ(version(), 65534);
    EXPECT_EQ(date(), "12/12/2019, 23:59:58");
    expectFileSent();
}

TEST_F(Kivra2CalibReaderTest, DateIsShownWithoutPaddingAndTheMonthForTheDay) {
    const auto shown = [&](const std::string& bytes) {
        load(bytes + std::string(2, '\0') + matrices());
        return date();
    };
    const auto dateBytes = [](int day, int month, int year, int hour, int minute, int second) {
        return Kivra2CalibBytes().date(day, month, year, hour, minute, second).text();
    };
    EXPECT_EQ(shown(dateBytes(31, 1, 0, 0, 0, 0)), "1/1/2000, 0:0:0");
    EXPECT_EQ(shown(dateBytes(5, 0, 17, 14, 7, 9)), "1/1/2017, 14:7:9");
    EXPECT_EQ(shown(dateBytes(0, 12, 207, 23, 59, 59)), "12/12/2207, 23:59:59");
    EXPECT_EQ(shown(dateBytes(255, 255, 255, 255, 255, 255)), "255/255/2255, 255:255:255");
    EXPECT_EQ(version(), 0);
}

TEST_F(Kivra2CalibReaderTest, VersionIsShownAsUnsigned) {
    std::string bytes = wholeFile();
    bytes[6] = bytes[7] = '\xFF';
    load(bytes);
    EXPECT_EQ(version(), 65535);
}

TEST_F(Kivra2CalibReaderTest, TornFileShowsWhatIsWholeAndSendsNothing) {
    const std::string whole = wholeFile();
    for (std::size_t size = 0; size < whole.size(); ++size) {
        SCOPED_TRACE(size);
        FilterKivra2CalibReader fresh("fresh");
        Support::FilterHarness torn(fresh);
        torn.watch();
        Support::writeBytes(file, whole.substr(0, size));
        expectThrow<Poco::IOException>(kCorrupted, [&] { torn.set("Load File", file); });
        EXPECT_EQ(torn.get<std::string>("Date/Time Calib"),
                  size < Kivra2CalibBytes::kDateSize ? kNoDate : "3/3/2017, 14:7:9");
        EXPECT_EQ(torn.get<int>("Version"), size < Kivra2CalibBytes::kHeadSize ? 255 : 3);
        EXPECT_EQ(torn.get<std::string>("Load File"), "");
        EXPECT_THAT(torn.lockedNames(), ElementsAre("Version", "Date/Time Calib"));
        for (const char* pin : kPins)
            EXPECT_THAT(torn.pull(pin), IsEmpty());
    }
}

TEST_F(Kivra2CalibReaderTest, TornFileAfterAWholeOneKeepsWhatItCannotReplace) {
    load(wholeFile());
    expectFileSent();
    Support::writeBytes(folder.file("torn.cal"),
                        Kivra2CalibBytes().date(1, 2, 18, 3, 4, 5).byte(9).text());
    expectRefused(kCorrupted, folder.file("torn.cal"));
    EXPECT_EQ(date(), "2/2/2018, 3:4:5");
    EXPECT_EQ(version(), 3);
    EXPECT_EQ(cal.get<std::string>("Load File"), file);
    expectNothingSent();
}

TEST_F(Kivra2CalibReaderTest, BytesBehindTheMatricesAreIgnored) {
    load(wholeFile() + "more");
    expectFileSent();
}

TEST_F(Kivra2CalibReaderTest, SameNameLoadsTheFileAgain) {
    load(wholeFile());
    expectFileSent();
    load(Kivra2CalibBytes().date(1, 2, 18, 3, 4, 5).version(7).text() + matrices());
    EXPECT_EQ(version(), 7);
    expectFileSent();
}

TEST_F(Kivra2CalibReaderTest, WhatIsNoFileIsNotFound) {
    load(wholeFile());
    expectFileSent();
    for (const std::string& path : {folder.file("missing.cal"), folder.file("missing/unit.cal"),
                                    folder.path() + "/", folder.path()})
        expectRefused("File not found : " + path, path);
    EXPECT_EQ(version(), 3);
    EXPECT_EQ(date(), "3/3/2017, 14:7:9");
    EXPECT_EQ(cal.get<std::string>("Load File"), file);
    expectNothingSent();
}

TEST_F(Kivra2CalibReaderTest, EmptyNameForgetsTheMatricesWithoutSending) {
    load(wholeFile());
    expectFileSent();
    cal.set("Load File", "");
    expectNothingSent();
    EXPECT_EQ(version(), 3);
    EXPECT_EQ(date(), "3/3/2017, 14:7:9");
    cal.trigger("Flush");
    expectDefaultsSent();
}

TEST_F(Kivra2CalibReaderTest, VariablesInThePathAreExpanded) {
    Poco::Environment::set("KIVRA2_CALIB_FOLDER", folder.path());
    Support::writeBytes(file, wholeFile());
    cal.set("Load File", "${KIVRA2_CALIB_FOLDER}/unit.cal");
    EXPECT_EQ(cal.get<std::string>("Load File"), "${KIVRA2_CALIB_FOLDER}/unit.cal");
    expectFileSent();
}

TEST_F(Kivra2CalibReaderTest, FlushBeforeAnyLoadSendsIdentityAndZeros) {
    cal.trigger("Flush");
    expectDefaultsSent();
    EXPECT_EQ(version(), 255);
}

TEST_F(Kivra2CalibReaderTest, FlushSendsTheLoadedMatricesAgainWithTheTimeOfTheFlush) {
    load(wholeFile());
    expectFileSent();
    Poco::File(file).remove();
    for (int i = 1; i < 3; ++i) {
        const Support::FixedClock later(Poco::DateTime(2017, 5, 23, 10, 4, 31, 400 * i));
        cal.trigger("Flush");
        expectFileSent(kNow + 0.4 * i);
    }
}

TEST_F(Kivra2CalibReaderTest, FlushAfterAFailedLoadSendsIdentityAndZeros) {
    for (const bool exists : {false, true}) {
        load(wholeFile());
        expectFileSent();
        const std::string path = folder.file(exists ? "torn.cal" : "missing.cal");
        if (exists) Support::writeBytes(path, wholeFile().substr(0, 295));
        EXPECT_THROW(cal.set("Load File", path), Poco::IOException);
        cal.trigger("Flush");
        expectDefaultsSent();
    }
}

TEST_F(Kivra2CalibReaderTest, WhatWaitsAtAPinIsWhatWasSent) {
    // A pin of the same thread keeps no copy of the sample.
    Quoril::Core::InputPin<Eigen::MatrixXd> sink("sink", nullptr);
    filter.getOutputPins().front()->attach(sink, /*skipNotification=*/false);
    for (const std::string& next :
         {folder.file("missing.cal"), folder.file("torn.cal"), std::string()}) {
        SCOPED_TRACE(next);
        load(wholeFile());
        Support::writeBytes(folder.file("torn.cal"), wholeFile().substr(0, 200));
        try {
            cal.set("Load File", next);
        } catch (const Poco::IOException&) {
            EXPECT_NE(next, "");
        }
        ASSERT_TRUE(sink.fetch());
        EXPECT_EQ(sink.take()->value, gain);
        EXPECT_FALSE(sink.fetch());
    }
}

TEST_F(Kivra2CalibReaderTest, ShownPropertiesAreNeverWritable) {
    const auto expectLocked = [&] {
        EXPECT_THAT(cal.lockedNames(), ElementsAre("Version", "Date/Time Calib"));
        expectThrow<Poco::NoPermissionException>("Property 'Version' is not writable",
                                                 [&] { cal.set("Version", 1); });
        expectThrow<Poco::NoPermissionException>("Property 'Date/Time Calib' is not writable",
                                                 [&] { cal.set("Date/Time Calib", "x"); });
    };
    expectLocked();
    load(wholeFile());
    expectLocked();
    EXPECT_THROW(load("torn"), Poco::IOException);
    expectLocked();
    EXPECT_EQ(version(), 3);
}

TEST_F(Kivra2CalibReaderTest, CallsSendNothing) {
    load(wholeFile());
    expectFileSent();
    cal.step(3);
    expectNothingSent();
}
