#include "framework/FileNameProperty.hpp"
#include "framework/RangeProperty.hpp"
#include "tests/filters/kivra2/Kivra2ReplayFixture.hpp"
#include "tests/filters/sensorfile/CallDuringEdit.hpp"
#include "tests/support/OpenFileCount.hpp"

#include <cmath>
#include <cstdlib>
#include <limits>

#include <Poco/Exception.h>

using Support::expectThrow;
using testing::ElementsAre;
using testing::ElementsAreArray;
using testing::IsEmpty;

namespace {

const std::vector<std::string> kPlainPins{"3a",     "3aGain", "3aOff",       "3m",
                                          "3mGain", "3mOff",  "FrameNumber", "Button"};
const std::vector<std::string> kGyroPins{"3a",     "3aGain", "3aOff",       "3m",
                                         "3mGain", "3mOff",  "FrameNumber", "Button",
                                         "3g",     "3gGain", "3gOff"};

}  // namespace

class ReplayKivra2LoadTest : public Kivra2ReplayFixture {
 protected:
    void expectUnloaded() const {
        EXPECT_THAT(replay.lockedNames(),
                    ElementsAre("Replay", "AutoReplay", "Keep file frequency", "Force Ticks",
                                "SampleDelay", "RecordFrequency", "Calib Version"));
        EXPECT_FALSE(isReplaying());
    }
    template <class Exception>
    void expectLoadFails(const std::string& message) {
        expectThrow<Exception>(message, [&] { load(); });
        expectUnloaded();
    }
    // The present matrix of a pin.
    Eigen::MatrixXd value(const std::string& name) {
        auto* const pin = filter.findOutputPin(name);
        if (pin == nullptr) return {};
        return dynamic_cast<Quoril::Core::OutputPin<Eigen::MatrixXd>&>(*pin).getValue();
    }
    void expectShapesOfReset() {
        for (const char* name : {"3a", "3m", "3aOff", "3mOff", "FrameNumber"})
            EXPECT_EQ(value(name), Eigen::MatrixXd::Zero(1, 3)) << name;
        for (const char* name : {"3aGain", "3mGain"})
            EXPECT_EQ(value(name), Eigen::MatrixXd::Identity(3, 3)) << name;
        EXPECT_EQ(value("Button"), Eigen::MatrixXd::Zero(1, 1));
    }
};

TEST_F(ReplayKivra2LoadTest, FreshFilterHasNineProperties) {
    EXPECT_THAT(replay.propertyNames(),
                ElementsAre("Load File", "Replay", "Pause", "AutoReplay", "Keep file frequency",
                            "Force Ticks", "SampleDelay", "RecordFrequency", "Calib Version"));
    EXPECT_EQ(replay.get<std::string>("Load File"), "");
    for (const char* name : {"Replay", "Pause", "AutoReplay", "Keep file frequency", "Force Ticks"})
        EXPECT_FALSE(replay.get<bool>(name)) << name;
    EXPECT_EQ(replay.get<int>("SampleDelay"), 10);
    EXPECT_EQ(replay.get<double>("RecordFrequency"), 0.0);
    EXPECT_EQ(replay.get<int>("Calib Version"), 0);
    expectUnloaded();
}

TEST_F(ReplayKivra2LoadTest, TellsItsClassAndInstance) {
    EXPECT_STREQ(filter.getClassName(), "FilterReplayKivra2Format");
    EXPECT_EQ(filter.getName(), "player");
}

TEST_F(ReplayKivra2LoadTest, ReplayAndPauseAreNeverSaved) {
    for (const std::string& name : replay.propertyNames())
        EXPECT_EQ(replay.property(name).getIsPersistent(), name != "Replay" && name != "Pause")
            << name;
}

TEST_F(ReplayKivra2LoadTest, DelayGoesFrom0To1000) {
    writeCounters({});
    load();
    const auto& delay =
        dynamic_cast<Quoril::Core::RangeProperty<int>&>(replay.property("SampleDelay"));
    EXPECT_EQ(delay.getStep(), 1);
    replay.set("SampleDelay", 0);
    replay.set("SampleDelay", 1000);
    expectThrow<Poco::RangeException>("1001 does not fit in [0;1000], (step : 1)",
                                      [&] { replay.set("SampleDelay", 1001); });
    expectThrow<Poco::RangeException>("-1 does not fit in [0;1000], (step : 1)",
                                      [&] { replay.set("SampleDelay", -1); });
    EXPECT_EQ(replay.get<int>("SampleDelay"), 1000);
}

TEST_F(ReplayKivra2LoadTest, FileNameTakesAnyFileAndExpandsVariables) {
    const auto& name =
        dynamic_cast<const Quoril::Core::FileNameProperty&>(replay.property("Load File"));
    EXPECT_EQ(name.getFilter(), "*");
    EXPECT_TRUE(name.getExpandVariables());
    writeCounters({1});
    setenv("QUORIL_TEST_FOLDER", folder.path().c_str(), 1);
    replay.set("Load File", "${QUORIL_TEST_FOLDER}/a.sf");
    EXPECT_TRUE(replay.isWritable("Replay"));
    EXPECT_EQ(replay.get<std::string>("Load File"), "${QUORIL_TEST_FOLDER}/a.sf");
}

TEST_F(ReplayKivra2LoadTest, FreshFilterHasThePinsOfAUnitWithoutGyroscope) {
    EXPECT_EQ(replay.outputNames(), kPlainPins);
    EXPECT_THAT(replay.inputNames(), IsEmpty());
    expectShapesOfReset();
}

TEST_F(ReplayKivra2LoadTest, GyroscopePinsComeAndGoWithTheFile) {
    describe(100.0, /*hasGyro=*/true);
    writeCounters({});
    load();
    EXPECT_EQ(replay.outputNames(), kGyroPins);
    EXPECT_EQ(value("3g"), Eigen::MatrixXd::Zero(1, 3));
    EXPECT_EQ(value("3gGain"), Eigen::MatrixXd::Identity(3, 3));
    EXPECT_EQ(value("3gOff"), Eigen::MatrixXd::Zero(1, 3));
    describe();
    writeCounters({});
    load();
    EXPECT_EQ(replay.outputNames(), kPlainPins);
}

TEST_F(ReplayKivra2LoadTest, LoadShowsTheFileAndFreesTheControls) {
    describe(50.0);
    config.setCalibFormat(7);
    writeCounters({});
    load();
    EXPECT_EQ(replay.get<double>("RecordFrequency"), 50.0);
    EXPECT_EQ(replay.get<int>("Calib Version"), 7);
    EXPECT_THAT(replay.lockedNames(), ElementsAre("RecordFrequency", "Calib Version"));
}

TEST_F(ReplayKivra2LoadTest, FileWithoutAPositiveFrequencyCannotKeepIt) {
    for (const double hertz : {0.0, -50.0, std::numeric_limits<double>::quiet_NaN()}) {
        describe(hertz);
        writeCounters({});
        load();
        EXPECT_THAT(replay.lockedNames(),
                    ElementsAre("Keep file frequency", "RecordFrequency", "Calib Version"));
    }
    expectThrow<Poco::NoPermissionException>("Property 'Keep file frequency' is not writable",
                                             [&] { replay.set("Keep file frequency", true); });
}

TEST_F(ReplayKivra2LoadTest, MissingFileIsNotValid) {
    file = folder.file("missing.sf");
    expectLoadFails<Poco::IOException>("File not valid.");
    EXPECT_EQ(replay.get<std::string>("Load File"), "");
}

TEST_F(ReplayKivra2LoadTest, FolderIsNotValid) {
    file = folder.path();
    expectLoadFails<Poco::IOException>("File not valid.");
    file += "/";
    expectLoadFails<Poco::IOException>("File not valid.");
}

TEST_F(ReplayKivra2LoadTest, FileThatIsNoBinarySensorFileIsNamed) {
    Support::writeBytes(file, "Header id: \taf243246\t56fe1289\t9078bc29\t80340101\t\n");
    expectLoadFails<Poco::DataException>("Format error in file : '" + file +
                                         "', check binary mode!");
}

TEST_F(ReplayKivra2LoadTest, OtherColumnsAreRefused) {
    config.addColumn("NINTH", 14);
    writeCounters({});
    expectLoadFails<Poco::DataException>("File format is not valid");
    describe();
    config.removeColumn("INFO");
    config.addColumn("BUTTON", 11);
    writeCounters({});
    expectLoadFails<Poco::DataException>("File format is not valid");
}

TEST_F(ReplayKivra2LoadTest, OnlyNoneFourOrSixRecordsAreAccepted) {
    for (std::size_t count = 0; count <= 7; ++count) {
        describe(100.0, /*hasGyro=*/true);
        addRecords(count);
        writeCounters({});
        if (count == 0 || count == 4 || count == 6)
            load();
        else
            expectLoadFails<Poco::DataException>("File format is not valid");
    }
}

TEST_F(ReplayKivra2LoadTest, RefusedFileIsShownAllTheSame) {
    describe(50.0);
    config.setCalibFormat(1);
    writeCounters({});
    expectLoadFails<Poco::DataException>("File format is not valid");
    EXPECT_EQ(replay.get<double>("RecordFrequency"), 50.0);
    EXPECT_EQ(replay.get<int>("Calib Version"), 1);
}

TEST_F(ReplayKivra2LoadTest, RefusedFileIsNotKeptOpen) {
    config.addColumn("NINTH", 14);
    writeCounters({});
    const std::size_t before = Support::openFileCount();
    expectLoadFails<Poco::DataException>("File format is not valid");
    EXPECT_EQ(Support::openFileCount(), before);
}

TEST_F(ReplayKivra2LoadTest, OldFilesAreAccepted) {
    for (const bool hasGyro : {false, true}) {
        describeOld(hasGyro);
        addRecords(4);
        writeCounters({});
        load();
        EXPECT_EQ(replay.get<int>("Calib Version"), 1);
        EXPECT_EQ(replay.outputNames(), hasGyro ? kGyroPins : kPlainPins);
        config.setCalibFormat(2);
        writeCounters({});
        expectLoadFails<Poco::DataException>("File format is not valid");
    }
}

TEST_F(ReplayKivra2LoadTest, BareCalibrationValuesMakeTwoRecordsASensorOfOtherNames) {
    for (const std::size_t sensors : {2U, 3U, 1U}) {
        describeOld(/*hasGyro=*/true);
        config.setCalibVersion(0x0100);
        addRecords(2 * sensors);
        writeCounters({});
        if (sensors == 1) {
            expectLoadFails<Poco::DataException>("File format is not valid");
            continue;
        }
        load();
        EXPECT_EQ(value("3aGain"), Eigen::MatrixXd::Identity(3, 3)) << sensors;
    }
}

TEST_F(ReplayKivra2LoadTest, BadFileAfterAGoodOneLocksTheControls) {
    writeCounters({1, 2});
    const std::string good = file;
    for (const char* bad : {"missing.sf", "other.sf"}) {
        file = good;
        start();
        replay.set("Pause", true);
        file = folder.file("other.sf");
        describe();
        config.addColumn("NINTH", 14);
        write({});
        describe();
        file = folder.file(bad);
        EXPECT_THROW(load(), Poco::Exception);
        expectUnloaded();
        EXPECT_FALSE(replay.get<bool>("Pause"));
        EXPECT_EQ(replay.get<std::string>("Load File"), good);
        replay.step();
        EXPECT_THAT(replay.pull("3aGain"), IsEmpty());
    }
    file = good;
    start();
    replay.step();
    EXPECT_THAT(pullCounters(), ElementsAre(1));
}

TEST_F(ReplayKivra2LoadTest, FailedFirstLoadCanBeRepeated) {
    file = folder.file("missing.sf");
    for (int i = 0; i < 3; ++i)
        expectLoadFails<Poco::IOException>("File not valid.");
}

TEST_F(ReplayKivra2LoadTest, EmptyNameUnloadsTheFile) {
    describe(50.0, /*hasGyro=*/true);
    addRecords(6);
    writeCounters({1, 2});
    start();
    replay.step();
    replay.set("Load File", "");
    expectUnloaded();
    expectShapesOfReset();
    // What is not read anew stays as it is.
    EXPECT_EQ(replay.get<double>("RecordFrequency"), 50.0);
    EXPECT_EQ(replay.outputNames(), kGyroPins);
}

TEST_F(ReplayKivra2LoadTest, LoadEndsTheReplayOfBefore) {
    writeCounters({1, 2, 3});
    start();
    replay.step();
    replay.set("Pause", true);
    load();
    EXPECT_FALSE(isReplaying());
    EXPECT_FALSE(replay.get<bool>("Pause"));
    replay.set("Replay", true);
    replay.step();
    EXPECT_THAT(pullCounters(), ElementsAre(1, 1));
}

TEST_F(ReplayKivra2LoadTest, LoadKeepsThePinsThatAreConnected) {
    describe(100.0, /*hasGyro=*/true);
    writeCounters({1});
    load();
    replay.watch();
    load();
    replay.set("Replay", true);
    replay.step();
    EXPECT_THAT(replay.pullValues("3g"), ElementsAre(ElementsAre(1.0, 1.0, 1.0)));
}

TEST_F(ReplayKivra2LoadTest, RecordsOfTheRightNameAndShapeFillTheCalibrationPins) {
    describe(100.0, /*hasGyro=*/true);
    const Eigen::MatrixXd gain = Support::matrix({{1, 2, 3}, {4, 5, 6}, {7, 8, 9}});
    config.addCalibData("MagGain", gain);
    config.addCalibData("AccOffset", Eigen::MatrixXi(Eigen::MatrixXi::Constant(1, 3, 4)));
    config.addCalibData("GyrOffset", Eigen::MatrixXd(Eigen::MatrixXd::Constant(3, 1, 5.0)));
    config.addCalibData("Other", gain);
    writeCounters({});
    load();
    EXPECT_EQ(value("3mGain"), gain);
    EXPECT_EQ(value("3aOff"), Eigen::MatrixXd::Constant(1, 3, 4.0));
    EXPECT_EQ(value("3gOff"), Eigen::MatrixXd::Zero(1, 3));
    EXPECT_EQ(value("3aGain"), Eigen::MatrixXd::Identity(3, 3));
}

TEST_F(ReplayKivra2LoadTest, CalibrationOfTheFileBeforeIsForgotten) {
    addRecords(4);
    writeCounters({});
    load();
    EXPECT_EQ(value("3aGain"), Eigen::MatrixXd::Constant(3, 3, 1.0));
    EXPECT_EQ(value("3mOff"), Eigen::MatrixXd::Constant(1, 3, 4.0));
    describe();
    writeCounters({});
    load();
    expectShapesOfReset();
}

TEST_F(ReplayKivra2LoadTest, CallDuringALoadDoesNothing) {
    writeCounters({1, 2, 3});
    start();
    for (const char* name : {"Replay", "Pause", "SampleDelay"}) {
        replay.set("Replay", true);
        CallDuringEdit call(filter, replay.property(name));
        load();
        EXPECT_GT(call.calls, 0) << name;
        EXPECT_THAT(pullCounters(), IsEmpty()) << name;
        EXPECT_THAT(replay.pull("3aGain"), IsEmpty()) << name;
    }
}
