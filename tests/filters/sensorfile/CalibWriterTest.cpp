#include "framework/CommandProperty.hpp"
#include "framework/FileNameProperty.hpp"
#include "framework/RangeProperty.hpp"
#include "tests/filters/sensorfile/CalibWriterFixture.hpp"

#include <Poco/Environment.h>
#include <Poco/Path.h>

using Support::expectThrow;
using testing::ElementsAre;
using testing::IsEmpty;

class CalibWriterTest : public CalibWriterFixture {};

TEST_F(CalibWriterTest, FreshFilterHasFivePropertiesAndNoPins) {
    EXPECT_THAT(cal.propertyNames(),
                ElementsAre("Binary", "File Name", "Save", "Calib Version", "Calib Pins Number"));
    EXPECT_TRUE(cal.get<bool>("Binary"));
    EXPECT_EQ(cal.get<std::string>("File Name"), "");
    EXPECT_EQ(cal.get<int>("Calib Version"), 2);
    EXPECT_EQ(cal.get<int>("Calib Pins Number"), 0);
    EXPECT_THAT(cal.inputNames(), IsEmpty());
    EXPECT_THAT(cal.outputNames(), IsEmpty());
}

TEST_F(CalibWriterTest, TellsItsClassAndInstance) {
    EXPECT_STREQ(filter.getClassName(), "FilterCalibSensorFileWriter");
    EXPECT_EQ(filter.getName(), "saver");
}

TEST_F(CalibWriterTest, OnlyTheCalibrationVersionIsLocked) {
    EXPECT_THAT(cal.lockedNames(), ElementsAre("Calib Version"));
    expectThrow<Poco::NoPermissionException>("Property 'Calib Version' is not writable",
                                             [&] { cal.set("Calib Version", 3); });
}

TEST_F(CalibWriterTest, NumberOfPinsGoesFrom0To20) {
    const auto& number =
        dynamic_cast<const Quoril::Core::RangeProperty<int>&>(cal.property("Calib Pins Number"));
    EXPECT_EQ(number.getMinimum(), 0);
    EXPECT_EQ(number.getMaximum(), 20);
    EXPECT_EQ(number.getStep(), 1);
    cal.set("Calib Pins Number", 20);
    EXPECT_EQ(cal.inputNames().size(), 20U);
    EXPECT_EQ(cal.inputNames().back(), "calibInput#20");
    expectThrow<Poco::RangeException>("21 does not fit in [0;20], (step : 1)",
                                      [&] { cal.set("Calib Pins Number", 21); });
    expectThrow<Poco::RangeException>("-1 does not fit in [0;20], (step : 1)",
                                      [&] { cal.set("Calib Pins Number", -1); });
    EXPECT_EQ(cal.inputNames().size(), 20U);
    cal.set("Calib Pins Number", 0);
    EXPECT_THAT(cal.inputNames(), IsEmpty());
    EXPECT_EQ(cal.propertyNames().size(), 5U);
}

TEST_F(CalibWriterTest, FileNameTakesAnyFileAndExpandsVariables) {
    const auto& name =
        dynamic_cast<const Quoril::Core::FileNameProperty&>(cal.property("File Name"));
    EXPECT_EQ(name.getFilter(), "*");
    EXPECT_TRUE(name.getExpandVariables());
}

TEST_F(CalibWriterTest, SaveIsACommand) {
    EXPECT_NE(dynamic_cast<Quoril::Core::CommandProperty*>(&cal.property("Save")), nullptr);
}

TEST_F(CalibWriterTest, PinsComeWithTwoPropertiesEachAfterTheirNumber) {
    cal.set("Calib Pins Number", 2);
    EXPECT_THAT(cal.inputNames(), ElementsAre("calibInput#1", "calibInput#2"));
    EXPECT_THAT(
        cal.propertyNames(),
        ElementsAre("Binary", "File Name", "Save", "Calib Version", "Calib Pins Number",
                    "CalibColNames#1", "CalibColTypes#1", "CalibColNames#2", "CalibColTypes#2"));
    for (const char* number : {"1", "2"}) {
        const auto& types = dynamic_cast<const Quoril::Core::EnumProperty<std::string>&>(
            cal.property(std::string("CalibColTypes#") + number));
        EXPECT_THAT(types.getEntries(), ElementsAre("DOUBLE", "INT32"));
        EXPECT_EQ(types.get(), 0U);
        EXPECT_EQ(cal.get<std::string>(std::string("CalibColNames#") + number), "");
        EXPECT_FALSE(cal.input(std::string("calibInput#") + number).getIsBlocking());
    }
}

TEST_F(CalibWriterTest, PinsAreRemovedAtTheEndAndComeBackEmpty) {
    makePins({"a", "b", "c"});
    cal.choose("CalibColTypes#1", "INT32");
    cal.choose("CalibColTypes#2", "INT32");
    cal.set("Calib Pins Number", 1);
    EXPECT_THAT(cal.inputNames(), ElementsAre("calibInput#1"));
    EXPECT_THAT(cal.propertyNames(),
                ElementsAre("Binary", "File Name", "Save", "Calib Version", "Calib Pins Number",
                            "CalibColNames#1", "CalibColTypes#1"));
    cal.set("Calib Pins Number", 2);
    EXPECT_THAT(cal.inputNames(), ElementsAre("calibInput#1", "calibInput#2"));
    EXPECT_EQ(cal.get<std::string>("CalibColNames#1"), "a");
    EXPECT_EQ(cal.get<unsigned>("CalibColTypes#1"), 1U);
    EXPECT_EQ(cal.get<std::string>("CalibColNames#2"), "");
    EXPECT_EQ(cal.get<unsigned>("CalibColTypes#2"), 0U);
}

TEST_F(CalibWriterTest, SameNumberOfPinsKeepsThemAndWhatWaits) {
    makePins({"a"});
    cal.push("calibInput#1", Support::column({1.0}));
    cal.set("Calib Pins Number", 1);
    save();
    EXPECT_THAT(savedNames(), ElementsAre("a"));
}

TEST_F(CalibWriterTest, FileWithoutANameIsRefusedWithItsAbsolutePath) {
    makePins({"a"});
    expectThrow<Poco::IOException>("File not found : " + Poco::Path::current(),
                                   [&] { cal.trigger("Save"); });
    cal.set("File Name", "data/");
    expectThrow<Poco::IOException>("File not found : " + Poco::Path::current() + "data/",
                                   [&] { cal.trigger("Save"); });
    cal.set("File Name", folder.path() + "/");
    expectThrow<Poco::IOException>("File not found : " + folder.path() + "/",
                                   [&] { cal.trigger("Save"); });
}

TEST_F(CalibWriterTest, FileThatCannotBeOpenedIsNamed) {
    cal.set("File Name", folder.file("missing/a.sf"));
    expectThrow<Poco::IOException>("Problem while openning : " + folder.file("missing/a.sf"),
                                   [&] { cal.trigger("Save"); });
    EXPECT_FALSE(Poco::File(folder.file("missing")).exists());
    cal.set("File Name", folder.path());
    expectThrow<Poco::IOException>("Problem while openning : " + folder.path(),
                                   [&] { cal.trigger("Save"); });
}

TEST_F(CalibWriterTest, VariablesInThePathAreExpandedAtEachSave) {
    cal.set("File Name", "${QUORIL_TEST_FOLDER}/b.sf");
    Poco::Environment::set("QUORIL_TEST_FOLDER", folder.path());
    cal.trigger("Save");
    EXPECT_TRUE(Poco::File(folder.file("b.sf")).exists());
    EXPECT_EQ(cal.get<std::string>("File Name"), "${QUORIL_TEST_FOLDER}/b.sf");
    Poco::Environment::set("QUORIL_TEST_FOLDER", folder.file("missing"));
    expectThrow<Poco::IOException>("Problem while openning : " + folder.file("missing/b.sf"),
                                   [&] { cal.trigger("Save"); });
}
