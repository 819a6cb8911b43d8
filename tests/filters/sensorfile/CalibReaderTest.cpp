#include "filters/common/InputPinMva.hpp"
#include "framework/CommandProperty.hpp"
#include "framework/FileNameProperty.hpp"
#include "tests/filters/sensorfile/CalibReaderFixture.hpp"

#include <filesystem>

#include <Poco/DateTime.h>
#include <Poco/Environment.h>
#include <Poco/File.h>

using Support::column;
using Support::expectThrow;
using testing::ElementsAre;
using testing::IsEmpty;

namespace {

/// Another current folder for its scope.
class CurrentFolder {
 public:
    explicit CurrentFolder(const std::string& path) { std::filesystem::current_path(path); }
    ~CurrentFolder() { std::filesystem::current_path(before_); }
    CurrentFolder(const CurrentFolder&) = delete;
    CurrentFolder& operator=(const CurrentFolder&) = delete;

 private:
    const std::filesystem::path before_ = std::filesystem::current_path();
};

}  // namespace

class CalibReaderTest : public CalibReaderFixture {};

TEST_F(CalibReaderTest, FreshFilterHasSixPropertiesAndNoPins) {
    EXPECT_THAT(cal.propertyNames(), ElementsAre("Auto Detect Calibration Coefficients",
                                                 "Manually Set Calibration Coefficients", "Binary",
                                                 "Load File", "Flush", "Calib Version"));
    EXPECT_TRUE(cal.get<bool>(kAuto));
    EXPECT_EQ(cal.get<std::string>(kNames), "");
    EXPECT_TRUE(cal.get<bool>("Binary"));
    EXPECT_EQ(cal.get<std::string>("Load File"), "");
    EXPECT_NE(dynamic_cast<Quoril::Core::CommandProperty*>(&cal.property("Flush")), nullptr);
    EXPECT_EQ(cal.get<int>("Calib Version"), 0);
    EXPECT_THAT(cal.inputNames(), IsEmpty());
    EXPECT_THAT(cal.outputNames(), IsEmpty());
}

TEST_F(CalibReaderTest, TellsItsClassAndInstance) {
    EXPECT_STREQ(filter.getClassName(), "FilterCalibSensorFileReader");
    EXPECT_EQ(filter.getName(), "loader");
}

TEST_F(CalibReaderTest, FileNameTakesAnyFileAndExpandsVariables) {
    const auto& name =
        dynamic_cast<const Quoril::Core::FileNameProperty&>(cal.property("Load File"));
    EXPECT_EQ(name.getFilter(), "*");
    EXPECT_TRUE(name.getExpandVariables());
}

TEST_F(CalibReaderTest, NamesAreEditableExactlyWhileNothingIsDetected) {
    EXPECT_THAT(cal.lockedNames(), ElementsAre(kNames, "Calib Version"));
    cal.set(kAuto, false);
    EXPECT_THAT(cal.lockedNames(), ElementsAre("Calib Version"));
    cal.set(kAuto, false);
    EXPECT_THAT(cal.lockedNames(), ElementsAre("Calib Version"));
    cal.set(kAuto, true);
    EXPECT_THAT(cal.lockedNames(), ElementsAre(kNames, "Calib Version"));
    expectThrow<Poco::NoPermissionException>(
        "Property 'Manually Set Calibration Coefficients' is not writable",
        [&] { cal.set(kNames, "a"); });
}

TEST_F(CalibReaderTest, ProcessingCallsDoNothing) {
    write();
    load();
    cal.watch();
    cal.step(3);
    EXPECT_THAT(cal.pull("Gain"), IsEmpty());
}

// Loading.

TEST_F(CalibReaderTest, EveryRecordBecomesAPinOfItsName) {
    for (const bool binary : {true, false}) {
        write(binary);
        cal.set("Binary", binary);
        load();
        EXPECT_THAT(cal.outputNames(), ElementsAre("Gain", "Count", "Offset")) << binary;
        cal.watch();
        flush();
        const auto gain = cal.pull("Gain");
        ASSERT_EQ(gain.size(), 1U);
        EXPECT_EQ(gain[0].value, Support::matrix({{1.5, 2.0}, {3.0, 4.0}}));
        EXPECT_EQ(cal.pull("Count").at(0).value, Support::matrix({{7.0, -8.0}}));
        EXPECT_EQ(cal.pull("Offset").at(0).value, column({-0.25}));
    }
}

TEST_F(CalibReaderTest, RecordsOfOneNameBecomeOnePinEach) {
    config.addCalibData("Offset", column({5.0}));
    write();
    load();
    EXPECT_THAT(cal.outputNames(), ElementsAre("Gain", "Count", "Offset", "Offset"));
    cal.watch();
    flush();
    EXPECT_EQ(cal.pullValues("Offset", 0), (Values{{-0.25}}));
    EXPECT_EQ(cal.pullValues("Offset", 1), (Values{{5.0}}));
}

TEST_F(CalibReaderTest, NamedRecordsBecomePinsInTheOrderOfTheNames) {
    write();
    useNames(" Offset;Gain, ,Count; Offset");
    load();
    EXPECT_THAT(cal.outputNames(), ElementsAre("Offset", "Gain", "Count", "Offset"));
    cal.watch();
    flush();
    EXPECT_EQ(cal.pullValues("Offset", 0), (Values{{-0.25}}));
    EXPECT_EQ(cal.pullValues("Gain"), (Values{{1.5, 3.0, 2.0, 4.0}}));
    EXPECT_EQ(cal.pullValues("Count"), (Values{{7.0, -8.0}}));
    EXPECT_EQ(cal.pullValues("Offset", 1), (Values{{-0.25}}));
}

TEST_F(CalibReaderTest, NoNamesMakeNoPins) {
    write();
    useNames("; ,");
    load();
    EXPECT_THAT(cal.outputNames(), IsEmpty());
    flush();
}

TEST_F(CalibReaderTest, NamesDoNotMatterWhileRecordsAreDetected) {
    write();
    useNames("Missing");
    cal.set(kAuto, true);
    load();
    EXPECT_THAT(cal.outputNames(), ElementsAre("Gain", "Count", "Offset"));
}

TEST_F(CalibReaderTest, NameWithoutARecordRefusesTheLoadAndLeavesNoPins) {
    write();
    load();
    config.setCalibFormat(5);
    write();
    useNames("Gain;gain");
    expectThrow<Poco::DataException>(
        "Impossible to find one or more Coeff(s) in the calibration file", [&] { load(); });
    EXPECT_THAT(cal.outputNames(), IsEmpty());
    EXPECT_EQ(cal.get<int>("Calib Version"), 5);
    flush();
    useNames("Gain");
    load();
    EXPECT_THAT(cal.outputNames(), ElementsAre("Gain"));
}

TEST_F(CalibReaderTest, RefusedFileIsNotStored) {
    write();
    load();
    expectThrow<Poco::IOException>("File not valid.",
                                   [&] { cal.set("Load File", folder.file("none.sf")); });
    EXPECT_EQ(cal.get<std::string>("Load File"), file);
}

TEST_F(CalibReaderTest, FileThatCannotBeOpenedIsNotValidAndLeavesNoPins) {
    write();
    for (const std::string& path :
         {folder.file("none.sf"), folder.path(), folder.path() + "/", folder.file("no/a.sf")}) {
        load();
        EXPECT_EQ(cal.outputNames().size(), 3U);
        expectThrow<Poco::IOException>("File not valid.", [&] { cal.set("Load File", path); });
        EXPECT_THAT(cal.outputNames(), IsEmpty()) << path;
    }
    EXPECT_EQ(cal.get<int>("Calib Version"), 2);
}

TEST_F(CalibReaderTest, FileOfTheOtherEncodingIsToldAndLeavesNoPins) {
    write();
    load();
    cal.set("Binary", false);
    expectThrow<Poco::DataException>("Format error in file : '" + file + "', check binary mode!",
                                     [&] { load(); });
    EXPECT_THAT(cal.outputNames(), IsEmpty());
    cal.set("Binary", true);
    load();
    EXPECT_EQ(cal.outputNames().size(), 3U);
}

TEST_F(CalibReaderTest, RecordOfAnotherTypeIsRefused) {
    Support::writeBytes(file,
                        "Calib id: \taf243246\t56fe1289\t9078bc29\t80360200\t\n"
                        "Calib datetime:\t20/11/2026\t12:30:05\n"
                        "Calib version:\t2\t\n"
                        "Number of Calibration coefficient:\t1\t\n"
                        "Gain\tfloat\t(1, 1)\t\n1\t\n");
    cal.set("Binary", false);
    expectThrow<Poco::DataException>("Data type format is not supported!", [&] { load(); });
    EXPECT_THAT(cal.outputNames(), IsEmpty());
}

TEST_F(CalibReaderTest, EmptyPathKeepsThePins) {
    write();
    load();
    cal.set("Load File", "");
    EXPECT_THAT(cal.outputNames(), ElementsAre("Gain", "Count", "Offset"));
    cal.watch();
    flush();
    EXPECT_EQ(cal.pull("Gain").size(), 1U);
}

TEST_F(CalibReaderTest, EverySetLoadsAnewAlsoOfTheSameFile) {
    write();
    load();
    config.clearCalibData();
    config.addCalibData("New", column({1.0}));
    write();
    load();
    EXPECT_THAT(cal.outputNames(), ElementsAre("New"));
}

TEST_F(CalibReaderTest, OtherPropertiesLoadNothing) {
    write();
    load();
    cal.set(kAuto, false);
    cal.set(kNames, "Offset");
    cal.set("Binary", false);
    EXPECT_THAT(cal.outputNames(), ElementsAre("Gain", "Count", "Offset"));
    cal.set("Binary", true);
    load();
    EXPECT_THAT(cal.outputNames(), ElementsAre("Offset"));
}

TEST_F(CalibReaderTest, CalibrationVersionIsShownAndStaysLocked) {
    config.setCalibFormat(9);
    write();
    load();
    EXPECT_EQ(cal.get<int>("Calib Version"), 9);
    EXPECT_FALSE(cal.isWritable("Calib Version"));
}

TEST_F(CalibReaderTest, RecordingIsLoadedToo) {
    config.setCalibOnly(false);
    config.addColumn("TIME", 9);
    config.addColumn("ACCX", 14);
    for (const bool binary : {true, false}) {
        SensorFile::SensorFileWriter writer;
        writer.open(file, config, binary, /*writeHeaders=*/true);
        writer.writeRow(std::vector<double>{0.5, 3.0});
        writer.close();
        cal.set("Binary", binary);
        load();
        EXPECT_THAT(cal.outputNames(), ElementsAre("Gain", "Count", "Offset")) << binary;
        cal.watch();
        flush();
        EXPECT_EQ(cal.pullValues("Offset"), (Values{{-0.25}}));
    }
}

TEST_F(CalibReaderTest, RecordingWithoutRecordsHasNoPins) {
    config = SensorFile::SensorFileConfig();
    config.addColumn("TIME", 9);
    write();
    load();
    EXPECT_THAT(cal.outputNames(), IsEmpty());
    flush();
}

TEST_F(CalibReaderTest, BareValuesOfOldFilesAreGainsAndOffsets) {
    config.clearCalibData();
    config.addCalibData(
        "",
        Eigen::MatrixXd(
            (Eigen::MatrixXd(1, 14) << 1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14).finished()));
    for (const bool binary : {true, false}) {
        config.setCalibVersion(0x0102);
        write(binary);
        cal.set("Binary", binary);
        load();
        EXPECT_THAT(cal.outputNames(), ElementsAre("Gain1", "Offset1")) << binary;
        cal.watch();
        flush();
        EXPECT_EQ(cal.pull("Gain1").at(0).value,
                  Support::matrix({{1.0, 4.0, 7.0}, {2.0, 5.0, 8.0}, {3.0, 6.0, 9.0}}));
        EXPECT_EQ(cal.pull("Offset1").at(0).value, Support::matrix({{10.0, 11.0, 12.0}}));
    }
}

TEST_F(CalibReaderTest, LittleEndianFilesOfOldDevicesHaveTheFirstGainDoubled) {
    // Words of 16 bits, the highest first, each with its low byte first: 1, 2 ... 12.
    std::string values;
    for (const char* high : {"f03f", "0040", "0840", "1040", "1440", "1840", "1c40", "2040", "2240",
                             "2440", "2640", "2840"})
        values += std::string(high) + "000000000000";
    Support::writeBytes(file, Support::fromHex("af243246 56fe1289 9078bc29 8036 8101"
                                               "0000000000000080 052310173104 0200" +
                                               values));
    useNames("Offset1;Gain1");
    load();
    EXPECT_EQ(cal.get<int>("Calib Version"), 2);
    cal.watch();
    flush();
    EXPECT_EQ(cal.pull("Gain1").at(0).value,
              Support::matrix({{2.0, 4.0, 6.0}, {8.0, 10.0, 12.0}, {14.0, 16.0, 18.0}}));
    EXPECT_EQ(cal.pull("Offset1").at(0).value, Support::matrix({{10.0, 11.0, 12.0}}));
}

TEST_F(CalibReaderTest, LoadReplacesPinsThatAreConnected) {
    Filters::MatrixInputPin kept("kept", nullptr);
    write();
    load();
    filter.getOutputPins().front()->attach(kept, /*skipNotification=*/true);
    flush();
    EXPECT_TRUE(kept.fetch());
    load();
    EXPECT_EQ(kept.getOutputPin(), nullptr);
    EXPECT_FALSE(kept.fetch());
    filter.getOutputPins().front()->attach(kept, /*skipNotification=*/true);
    flush();
    ASSERT_TRUE(kept.fetch());
    EXPECT_EQ(kept.take()->value(0, 0), 1.5);
}

TEST_F(CalibReaderTest, FailedLoadLetsGoOfConnectedPins) {
    Filters::MatrixInputPin kept("kept", nullptr);
    write();
    load();
    filter.getOutputPins().front()->attach(kept, /*skipNotification=*/true);
    EXPECT_THROW(cal.set("Load File", folder.file("none.sf")), Poco::IOException);
    EXPECT_EQ(kept.getOutputPin(), nullptr);
}

TEST_F(CalibReaderTest, FileIsClosedBetweenUses) {
    write();
    load();
    flush();
    // The present content counts, so that nothing keeps the old file open.
    Poco::File(file).remove();
    Support::writeBytes(file, "no sensor file");
    expectThrow<Poco::DataException>("Format error in file : '" + file + "', check binary mode!",
                                     [&] { flush(); });
}

// Sending.

TEST_F(CalibReaderTest, LoadingSendsNothing) {
    write();
    useNames("Gain");
    load();
    cal.watch();
    EXPECT_THAT(cal.pull("Gain"), IsEmpty());
}

TEST_F(CalibReaderTest, EveryFlushSendsAllMatricesWithTheTimeSince1582) {
    write();
    load();
    cal.watch();
    for (const int second : {5, 6}) {
        const Support::FixedClock clock(Poco::DateTime(2026, 11, 20, 12, 30, second, 250));
        flush();
        // 1,795,177,800 s after 1970, which is 12,219,292,800 s after the calendar's start.
        const double now = 12'219'292'800.0 + 1'795'177'800.25 + second;
        for (const char* pin : {"Gain", "Count", "Offset"}) {
            const std::vector<double> times = cal.pullTimes(pin);
            ASSERT_EQ(times.size(), 1U) << pin;
            EXPECT_DOUBLE_EQ(times[0], now) << pin;
        }
    }
}

TEST_F(CalibReaderTest, FlushWithoutAFileSendsNothingQuietly) {
    flush();
    flush();
    EXPECT_THAT(cal.outputNames(), IsEmpty());
}

TEST_F(CalibReaderTest, FlushLoadsFirstWhatIsNotLoadedYet) {
    write();
    Poco::Environment::set("QUORIL_TEST_CALIB", "");
    cal.set("Load File", "${QUORIL_TEST_CALIB}");
    EXPECT_THAT(cal.outputNames(), IsEmpty());
    flush();
    EXPECT_THAT(cal.outputNames(), IsEmpty());
    Poco::Environment::set("QUORIL_TEST_CALIB", file);
    flush();
    EXPECT_THAT(cal.outputNames(), ElementsAre("Gain", "Count", "Offset"));
    EXPECT_EQ(cal.get<int>("Calib Version"), 2);
    cal.watch();
    flush();
    EXPECT_EQ(cal.pull("Gain").size(), 1U);
}

TEST_F(CalibReaderTest, FlushSendsWhatItLoadedItself) {
    write();
    // Pins with no connection keep the last sample's time.
    Poco::Environment::set("QUORIL_TEST_CALIB", "");
    cal.set("Load File", "${QUORIL_TEST_CALIB}");
    Poco::Environment::set("QUORIL_TEST_CALIB", file);
    const Support::FixedClock clock(Poco::DateTime(1970, 1, 1));
    flush();
    ASSERT_EQ(filter.getOutputPins().size(), 3U);
    for (const auto* pin : filter.getOutputPins()) {
        const auto& typed = dynamic_cast<const Filters::MatrixOutputPin&>(*pin);
        EXPECT_DOUBLE_EQ(typed.getSample().timeStamp, 12'219'292'800.0);
    }
}

TEST_F(CalibReaderTest, FlushAfterAFailedFirstLoadDoesNotTryAgain) {
    EXPECT_THROW(load(), Poco::IOException);
    write();
    flush();
    EXPECT_THAT(cal.outputNames(), IsEmpty());
    load();
    EXPECT_EQ(cal.outputNames().size(), 3U);
}

TEST_F(CalibReaderTest, FlushAfterAFailedLoadSendsNothingQuietly) {
    write();
    load();
    EXPECT_THROW(cal.set("Load File", folder.file("none.sf")), Poco::IOException);
    flush();
    EXPECT_THAT(cal.outputNames(), IsEmpty());
}

TEST_F(CalibReaderTest, FlushSendsTheMatricesAsTheyWereLoaded) {
    write();
    load();
    cal.watch();
    config.clearCalibData();
    config.addCalibData("Gain", column({9.0}));
    write();
    flush();
    EXPECT_EQ(cal.pullValues("Gain"), (Values{{1.5, 3.0, 2.0, 4.0}}));
}

TEST_F(CalibReaderTest, FlushOpensTheFileInTheEncodingOfTheMoment) {
    write();
    load();
    cal.watch();
    cal.set("Binary", false);
    expectThrow<Poco::DataException>("Format error in file : '" + file + "', check binary mode!",
                                     [&] { flush(); });
    EXPECT_THAT(cal.pull("Gain"), IsEmpty());
    cal.set("Binary", true);
    flush();
    EXPECT_EQ(cal.pull("Gain").size(), 1U);
}

TEST_F(CalibReaderTest, FlushWithoutTheLoadedFileFailsAndSendsNothing) {
    write();
    load();
    cal.watch();
    Poco::File(file).remove();
    expectThrow<Poco::FileNotFoundException>(file, [&] { flush(); });
    EXPECT_THAT(cal.pull("Gain"), IsEmpty());
    write();
    flush();
    EXPECT_EQ(cal.pull("Gain").size(), 1U);
}

TEST_F(CalibReaderTest, FlushStaysWithTheFileThoughTheFolderChanges) {
    write();
    {
        const CurrentFolder here(folder.path());
        cal.set("Load File", "calib.sf");
    }
    cal.watch();
    flush();
    EXPECT_EQ(cal.pull("Gain").size(), 1U);
}
