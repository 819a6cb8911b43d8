#include "framework/FileNameProperty.hpp"
#include "framework/RangeProperty.hpp"
#include "tests/filters/sensorfile/RecordFixture.hpp"

using testing::ElementsAre;
using testing::IsEmpty;

class RecordPropertiesTest : public RecordFixture {
 protected:
    Quoril::Core::RangeProperty<int>& range(const std::string& name) {
        return dynamic_cast<Quoril::Core::RangeProperty<int>&>(rec.property(name));
    }
};

TEST_F(RecordPropertiesTest, FreshFilterHasNineProperties) {
    EXPECT_THAT(rec.propertyNames(), ElementsAre("Binary", "File Name", "Record", "Save Timestamp",
                                                 "Freq", "Calib Version", "Double Precision",
                                                 "Pins Number", "Calib Pins Number"));
    EXPECT_FALSE(rec.get<bool>("Binary"));
    EXPECT_EQ(rec.get<std::string>("File Name"), "");
    EXPECT_FALSE(rec.get<bool>("Record"));
    EXPECT_FALSE(rec.get<bool>("Save Timestamp"));
    EXPECT_EQ(rec.get<double>("Freq"), 200.0);
    EXPECT_EQ(rec.get<int>("Calib Version"), 2);
    EXPECT_EQ(rec.get<int>("Double Precision"), 6);
    EXPECT_EQ(rec.get<int>("Pins Number"), 0);
    EXPECT_EQ(rec.get<int>("Calib Pins Number"), 0);
}

TEST_F(RecordPropertiesTest, FreshFilterHasNoPins) {
    EXPECT_THAT(rec.inputNames(), IsEmpty());
    EXPECT_THAT(rec.outputNames(), IsEmpty());
}

TEST_F(RecordPropertiesTest, TellsItsClassAndInstance) {
    EXPECT_STREQ(filter.getClassName(), "FilterRecordSensorFile");
    EXPECT_EQ(filter.getName(), "recorder");
}

TEST_F(RecordPropertiesTest, OnlyTheCalibrationVersionIsLockedAtFirst) {
    EXPECT_THAT(rec.lockedNames(), ElementsAre("Calib Version"));
    Support::expectThrow<Poco::NoPermissionException>("Property 'Calib Version' is not writable",
                                                      [&] { rec.set("Calib Version", 3); });
}

TEST_F(RecordPropertiesTest, OnlyRecordIsNeverSaved) {
    for (const std::string& name : rec.propertyNames())
        EXPECT_EQ(rec.property(name).getIsPersistent(), name != "Record") << name;
}

TEST_F(RecordPropertiesTest, CountsAndPrecisionGoFrom0To20) {
    for (const char* name : {"Double Precision", "Pins Number", "Calib Pins Number"}) {
        EXPECT_EQ(range(name).getMinimum(), 0) << name;
        EXPECT_EQ(range(name).getMaximum(), 20) << name;
        EXPECT_EQ(range(name).getStep(), 1) << name;
        rec.set(name, 20);
        rec.set(name, 0);
        Support::expectThrow<Poco::RangeException>("21 does not fit in [0;20], (step : 1)",
                                                   [&] { rec.set(name, 21); });
        Support::expectThrow<Poco::RangeException>("-1 does not fit in [0;20], (step : 1)",
                                                   [&] { rec.set(name, -1); });
        EXPECT_EQ(rec.get<int>(name), 0) << name;
    }
}

TEST_F(RecordPropertiesTest, FileNameTakesAnyFileAndExpandsVariables) {
    const auto& name =
        dynamic_cast<const Quoril::Core::FileNameProperty&>(rec.property("File Name"));
    EXPECT_EQ(name.getFilter(), "*");
    EXPECT_TRUE(name.getExpandVariables());
}

TEST_F(RecordPropertiesTest, PinsComeWithTwoPropertiesEach) {
    rec.set("Pins Number", 2);
    EXPECT_THAT(rec.inputNames(), ElementsAre("input#1", "input#2"));
    EXPECT_THAT(rec.propertyNames(),
                ElementsAre("Binary", "File Name", "Record", "Save Timestamp", "Freq",
                            "Calib Version", "Double Precision", "Pins Number", "ColNames#1",
                            "ColTypes#1", "ColNames#2", "ColTypes#2", "Calib Pins Number"));
    EXPECT_EQ(rec.get<std::string>("ColNames#1"), "");
    EXPECT_EQ(rec.get<unsigned>("ColTypes#1"), 0U);
}

TEST_F(RecordPropertiesTest, CalibrationPinsComeAfterTheirNumber) {
    rec.set("Calib Pins Number", 1);
    rec.set("Pins Number", 1);
    EXPECT_THAT(rec.inputNames(), ElementsAre("calibInput#1", "input#1"));
    EXPECT_THAT(
        rec.propertyNames(),
        ElementsAre("Binary", "File Name", "Record", "Save Timestamp", "Freq", "Calib Version",
                    "Double Precision", "Pins Number", "ColNames#1", "ColTypes#1",
                    "Calib Pins Number", "CalibColNames#1", "CalibColTypes#1"));
    rec.set("Calib Pins Number", 2);
    EXPECT_THAT(rec.propertyNames(),
                ElementsAre("Binary", "File Name", "Record", "Save Timestamp", "Freq",
                            "Calib Version", "Double Precision", "Pins Number", "ColNames#1",
                            "ColTypes#1", "Calib Pins Number", "CalibColNames#1", "CalibColTypes#1",
                            "CalibColNames#2", "CalibColTypes#2"));
    rec.choose("CalibColTypes#2", "INT32");
    EXPECT_EQ(rec.get<unsigned>("CalibColTypes#2"), 1U);
}

TEST_F(RecordPropertiesTest, TimeStampPropertiesStandBeforeFreq) {
    rec.set("Pins Number", 1);
    rec.set("Calib Pins Number", 1);
    rec.set("Save Timestamp", true);
    EXPECT_THAT(rec.inputNames(), ElementsAre("input#1", "calibInput#1", "TimeStampPin"));
    EXPECT_THAT(rec.propertyNames(),
                ElementsAre("Binary", "File Name", "Record", "Save Timestamp", "TimeStampColName",
                            "TimeStampColType", "Freq", "Calib Version", "Double Precision",
                            "Pins Number", "ColNames#1", "ColTypes#1", "Calib Pins Number",
                            "CalibColNames#1", "CalibColTypes#1"));
    rec.set("Pins Number", 2);
    EXPECT_THAT(rec.propertyNames(),
                ElementsAre("Binary", "File Name", "Record", "Save Timestamp", "TimeStampColName",
                            "TimeStampColType", "Freq", "Calib Version", "Double Precision",
                            "Pins Number", "ColNames#1", "ColTypes#1", "ColNames#2", "ColTypes#2",
                            "Calib Pins Number", "CalibColNames#1", "CalibColTypes#1"));
    rec.set("Save Timestamp", false);
    EXPECT_THAT(rec.inputNames(), ElementsAre("input#1", "calibInput#1", "input#2"));
    EXPECT_THAT(
        rec.propertyNames(),
        ElementsAre("Binary", "File Name", "Record", "Save Timestamp", "Freq", "Calib Version",
                    "Double Precision", "Pins Number", "ColNames#1", "ColTypes#1", "ColNames#2",
                    "ColTypes#2", "Calib Pins Number", "CalibColNames#1", "CalibColTypes#1"));
}

TEST_F(RecordPropertiesTest, SavingTheTimestampTwiceKeepsItsPin) {
    rec.set("Save Timestamp", true);
    rec.set("TimeStampColName", "TIME");
    rec.set("Save Timestamp", true);
    EXPECT_EQ(rec.get<std::string>("TimeStampColName"), "TIME");
    rec.choose("TimeStampColType", "UINT32");
    EXPECT_EQ(rec.get<unsigned>("TimeStampColType"), 1U);
}

TEST_F(RecordPropertiesTest, PinsAreRemovedAtTheEndAndComeBackEmpty) {
    rec.set("Pins Number", 3);
    rec.set("ColNames#1", "a");
    rec.set("ColNames#2", "b");
    rec.set("Pins Number", 1);
    EXPECT_THAT(rec.inputNames(), ElementsAre("input#1"));
    EXPECT_THAT(rec.propertyNames(),
                ElementsAre("Binary", "File Name", "Record", "Save Timestamp", "Freq",
                            "Calib Version", "Double Precision", "Pins Number", "ColNames#1",
                            "ColTypes#1", "Calib Pins Number"));
    rec.set("Pins Number", 2);
    EXPECT_THAT(rec.inputNames(), ElementsAre("input#1", "input#2"));
    EXPECT_EQ(rec.get<std::string>("ColNames#1"), "a");
    EXPECT_EQ(rec.get<std::string>("ColNames#2"), "");
}

TEST_F(RecordPropertiesTest, RemovedPinsLeaveTheirConnection) {
    rec.set("Pins Number", 2);
    rec.connect("input#2");
    rec.set("Pins Number", 1);
    rec.set("Pins Number", 2);
    EXPECT_EQ(rec.input("input#2").getOutputPin(), nullptr);
}

TEST_F(RecordPropertiesTest, PinsDoNotBlockAndDataPinsKeepSamples) {
    rec.set("Pins Number", 1);
    rec.set("Calib Pins Number", 1);
    rec.set("Save Timestamp", true);
    for (const char* name : {"input#1", "calibInput#1", "TimeStampPin"})
        EXPECT_FALSE(rec.input(name).getIsBlocking()) << name;
    EXPECT_EQ(rec.input("input#1").getBuffer().size, 256U);
    EXPECT_FALSE(rec.input("input#1").getBuffer().isLifo);
    EXPECT_EQ(rec.input("TimeStampPin").getBuffer().size, 256U);
    EXPECT_EQ(rec.input("calibInput#1").getBuffer().size, 1U);
}

TEST_F(RecordPropertiesTest, RecordingLocksWhatShapesTheFile) {
    makePins({{"a", "DOUBLE"}});
    rec.set("Calib Pins Number", 1);
    rec.set("CalibColNames#1", "C");
    rec.set("Save Timestamp", true);
    rec.set("TimeStampColName", "TIME");
    start();
    EXPECT_THAT(
        rec.lockedNames(),
        ElementsAre("File Name", "Save Timestamp", "TimeStampColName", "TimeStampColType",
                    "Calib Version", "Double Precision", "Pins Number", "ColNames#1", "ColTypes#1",
                    "Calib Pins Number", "CalibColNames#1", "CalibColTypes#1"));
    stop();
    EXPECT_THAT(rec.lockedNames(), ElementsAre("Calib Version"));
}

TEST_F(RecordPropertiesTest, FileNameIsExpanded) {
    setenv("QUORIL_TEST_FOLDER", folder.path().c_str(), 1);
    file = "${QUORIL_TEST_FOLDER}/b.sf";
    start();
    EXPECT_TRUE(Poco::File(folder.file("b.sf")).exists());
    EXPECT_EQ(rec.get<std::string>("File Name"), "${QUORIL_TEST_FOLDER}/b.sf");
}
