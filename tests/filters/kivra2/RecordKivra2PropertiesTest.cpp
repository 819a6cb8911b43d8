#include "framework/FileNameProperty.hpp"
#include "framework/RangeProperty.hpp"
#include "tests/filters/kivra2/Kivra2RecordFixture.hpp"

#include <cstdlib>

#include <Poco/File.h>
#include <Poco/Path.h>

using Support::expectThrow;
using testing::ElementsAre;
using testing::IsEmpty;

class RecordKivra2PropertiesTest : public Kivra2RecordFixture {
 protected:
    void expectIdle() const {
        EXPECT_FALSE(isRecording());
        EXPECT_THAT(rec.lockedNames(), ElementsAre("Pause", "Calib Version"));
    }
};

TEST_F(RecordKivra2PropertiesTest, FreshFilterHasSixProperties) {
    EXPECT_THAT(rec.propertyNames(), ElementsAre("File Name", "Record", "Pause", "Save Gyro",
                                                 "Double Precision", "Calib Version"));
    EXPECT_EQ(rec.get<std::string>("File Name"), "");
    EXPECT_FALSE(rec.get<bool>("Record"));
    EXPECT_FALSE(rec.get<bool>("Pause"));
    EXPECT_FALSE(rec.get<bool>("Save Gyro"));
    EXPECT_EQ(rec.get<int>("Double Precision"), 6);
    EXPECT_EQ(rec.get<int>("Calib Version"), 2);
}

TEST_F(RecordKivra2PropertiesTest, TellsItsClassAndInstance) {
    EXPECT_STREQ(filter.getClassName(), "FilterRecordKivra2Format");
    EXPECT_EQ(filter.getName(), "recorder");
}

TEST_F(RecordKivra2PropertiesTest, FreshFilterHasThePinsOfAUnitWithoutGyroscope) {
    EXPECT_THAT(rec.inputNames(), ElementsAre("3a", "3aGain", "3aOff", "3m", "3mGain", "3mOff",
                                              "FrameNumber", "Button"));
    EXPECT_THAT(rec.outputNames(), IsEmpty());
}

TEST_F(RecordKivra2PropertiesTest, GyroscopePinsComeLastAndGoAgain) {
    rec.set("Save Gyro", true);
    EXPECT_THAT(rec.inputNames(), ElementsAre("3a", "3aGain", "3aOff", "3m", "3mGain", "3mOff",
                                              "FrameNumber", "Button", "3g", "3gGain", "3gOff"));
    rec.set("Save Gyro", false);
    EXPECT_THAT(rec.inputNames(), ElementsAre("3a", "3aGain", "3aOff", "3m", "3mGain", "3mOff",
                                              "FrameNumber", "Button"));
}

TEST_F(RecordKivra2PropertiesTest, GyroscopeAskedForTwiceHasFreshPins) {
    rec.set("Save Gyro", true);
    rec.connect("3g");
    rec.set("Save Gyro", true);
    EXPECT_THAT(rec.inputNames(), ElementsAre("3a", "3aGain", "3aOff", "3m", "3mGain", "3mOff",
                                              "FrameNumber", "Button", "3g", "3gGain", "3gOff"));
    EXPECT_EQ(rec.input("3g").getOutputPin(), nullptr);
}

TEST_F(RecordKivra2PropertiesTest, PinsDoNotBlockAndSamplePinsKeepSamples) {
    rec.set("Save Gyro", true);
    for (const std::string& name : rec.inputNames())
        EXPECT_FALSE(rec.input(name).getIsBlocking()) << name;
    for (const char* name : {"3a", "3m", "3g", "FrameNumber", "Button"}) {
        EXPECT_EQ(rec.input(name).getBuffer().size, 256U) << name;
        EXPECT_FALSE(rec.input(name).getBuffer().isLifo) << name;
    }
    for (const char* name : {"3aGain", "3aOff", "3mGain", "3mOff", "3gGain", "3gOff"})
        EXPECT_EQ(rec.input(name).getBuffer().size, 1U) << name;
}

TEST_F(RecordKivra2PropertiesTest, PauseAndCalibrationVersionAreLockedAtFirst) {
    EXPECT_THAT(rec.lockedNames(), ElementsAre("Pause", "Calib Version"));
    expectThrow<Poco::NoPermissionException>("Property 'Calib Version' is not writable",
                                             [&] { rec.set("Calib Version", 3); });
    expectThrow<Poco::NoPermissionException>("Property 'Pause' is not writable",
                                             [&] { rec.set("Pause", true); });
}

TEST_F(RecordKivra2PropertiesTest, RecordAndPauseAreNeverSaved) {
    for (const std::string& name : rec.propertyNames())
        EXPECT_EQ(rec.property(name).getIsPersistent(), name != "Record" && name != "Pause")
            << name;
}

TEST_F(RecordKivra2PropertiesTest, PrecisionGoesFrom0To20) {
    const auto& precision =
        dynamic_cast<Quoril::Core::RangeProperty<int>&>(rec.property("Double Precision"));
    EXPECT_EQ(precision.getStep(), 1);
    rec.set("Double Precision", 20);
    rec.set("Double Precision", 0);
    expectThrow<Poco::RangeException>("21 does not fit in [0;20], (step : 1)",
                                      [&] { rec.set("Double Precision", 21); });
    expectThrow<Poco::RangeException>("-1 does not fit in [0;20], (step : 1)",
                                      [&] { rec.set("Double Precision", -1); });
    EXPECT_EQ(rec.get<int>("Double Precision"), 0);
}

TEST_F(RecordKivra2PropertiesTest, FileNameTakesAnyFileAndExpandsVariables) {
    const auto& name =
        dynamic_cast<const Quoril::Core::FileNameProperty&>(rec.property("File Name"));
    EXPECT_EQ(name.getFilter(), "*");
    EXPECT_TRUE(name.getExpandVariables());
    setenv("QUORIL_TEST_FOLDER", folder.path().c_str(), 1);
    file = "${QUORIL_TEST_FOLDER}/b.sf";
    start();
    EXPECT_TRUE(Poco::File(folder.file("b.sf")).exists());
    EXPECT_EQ(rec.get<std::string>("File Name"), "${QUORIL_TEST_FOLDER}/b.sf");
}

TEST_F(RecordKivra2PropertiesTest, RecordingLocksWhatShapesTheFileAndFreesPause) {
    start();
    EXPECT_THAT(rec.lockedNames(),
                ElementsAre("File Name", "Save Gyro", "Double Precision", "Calib Version"));
    stop();
    EXPECT_THAT(rec.lockedNames(), ElementsAre("Pause", "Calib Version"));
}

TEST_F(RecordKivra2PropertiesTest, StopEndsThePause) {
    start();
    rec.set("Pause", true);
    stop();
    EXPECT_FALSE(rec.get<bool>("Pause"));
    expectIdle();
}

TEST_F(RecordKivra2PropertiesTest, StopCanBeRepeated) {
    stop();
    expectIdle();
    start();
    rec.set("Pause", true);
    stop();
    stop();
    EXPECT_FALSE(rec.get<bool>("Pause"));
    expectIdle();
}

TEST_F(RecordKivra2PropertiesTest, FileIsCreatedAtTheStartAndItsHeaderWithTheFirstRow) {
    EXPECT_FALSE(Poco::File(file).exists());
    start();
    EXPECT_TRUE(Poco::File(file).exists());
    rec.step();
    EXPECT_EQ(Support::readBytes(file), "");
    recordPlain();
    stop();
    EXPECT_EQ(rows().size(), 1U);
}

TEST_F(RecordKivra2PropertiesTest, FileThatExistsIsEmptied) {
    Support::writeBytes(file, "old content");
    start();
    stop();
    EXPECT_EQ(Support::readBytes(file), "");
}

TEST_F(RecordKivra2PropertiesTest, EmptyFileNameIsRefused) {
    expectThrow<Poco::IOException>("File not found : " + Poco::Path::current(),
                                   [&] { rec.set("Record", true); });
    expectIdle();
}

TEST_F(RecordKivra2PropertiesTest, FileNameThatEndsWithASeparatorIsRefused) {
    rec.set("File Name", folder.path() + "/");
    expectThrow<Poco::IOException>("File not found : " + folder.path() + "/",
                                   [&] { rec.set("Record", true); });
    expectIdle();
}

TEST_F(RecordKivra2PropertiesTest, FileThatCannotBeOpenedIsRefused) {
    rec.set("File Name", folder.file("missing/a.sf"));
    expectThrow<Poco::IOException>("Problem while openning : " + folder.file("missing/a.sf"),
                                   [&] { rec.set("Record", true); });
    expectIdle();
    recordFile();
    EXPECT_EQ(rows().size(), 1U);
}

TEST_F(RecordKivra2PropertiesTest, FolderIsNoFileToRecordInto) {
    rec.set("File Name", folder.path());
    expectThrow<Poco::IOException>("Problem while openning : " + folder.path(),
                                   [&] { rec.set("Record", true); });
    expectIdle();
}

TEST_F(RecordKivra2PropertiesTest, StartingTwiceGoesOnWithTheSameFile) {
    start();
    recordPlain();
    rec.set("Record", true);
    recordPlain();
    stop();
    EXPECT_EQ(rows().size(), 2U);
}

TEST_F(RecordKivra2PropertiesTest, FilterThatIsDestroyedWhileRecordingClosesItsFile) {
    {
        FilterRecordKivra2Format other("other");
        Support::FilterHarness harness(other);
        harness.set("File Name", file);
        harness.set("Record", true);
        harness.push("3a", line({1.0, 2.0, 3.0}));
        harness.push("3m", line({4.0, 5.0, 6.0}));
        harness.push("Button", line({7.0}));
        harness.step();
    }
    EXPECT_EQ(rows(), (Rows{{0.0, 1.0, 2.0, 3.0, 4.0, 5.0, 6.0, 7.0}}));
}
