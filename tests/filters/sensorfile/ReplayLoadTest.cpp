#include "tests/filters/sensorfile/ReplayFixture.hpp"
#include "tests/support/OpenFileCount.hpp"

#include <cstdlib>

#include <Poco/Path.h>

using Support::column;
using Support::expectThrow;
using Support::matrix;
using testing::ElementsAre;
using testing::IsEmpty;

class ReplayLoadTest : public ReplayFixture {
 protected:
    // What any failed load leaves behind.
    void expectUnloaded() {
        EXPECT_THAT(replay.outputNames(), IsEmpty());
        EXPECT_FALSE(replay.isWritable("Replay"));
        EXPECT_FALSE(replay.isWritable("AutoReplay"));
        EXPECT_FALSE(replay.isWritable("EnableFileTimeStamp"));
        EXPECT_FALSE(replay.isWritable("TimeStampColName"));
        EXPECT_TRUE(replay.isWritable("SampleDelay"));
        EXPECT_TRUE(replay.isWritable("Load File"));
    }

    template <class Exception>
    void expectLoadFails(const std::string& message) {
        expectThrow<Exception>(message, [&] { load(); });
        expectUnloaded();
    }
};

TEST_F(ReplayLoadTest, PinsAreMadeFromTheColumnNamesAndRecords) {
    columns({"ACCX", "ACCY", "ACCZ", "COUNT"});
    config.addCalibData("Gain", column({1.0}));
    write({});
    load();
    EXPECT_THAT(replay.outputNames(), ElementsAre("ACC", "COUNT", "Gain"));
}

TEST_F(ReplayLoadTest, TextFilesAreLoadedWithBinaryOff) {
    columns({"a", "COUNT"});
    write({{1.0, 2.0}}, /*binary=*/false);
    expectLoadFails<Poco::DataException>("Format error in file : '" + file +
                                         "', check binary mode!");
    EXPECT_EQ(replay.get<std::string>("Load File"), "");
    replay.set("Binary", false);
    load();
    EXPECT_THAT(replay.outputNames(), ElementsAre("a", "COUNT"));
}

TEST_F(ReplayLoadTest, DisplaysFrequencyAndCalibrationVersionReadOnly) {
    columns({"a", "COUNT"}, 819.2);
    config.setCalibFormat(7);
    config.addCalibData("Gain", column({1.0}));
    write({});
    load();
    EXPECT_EQ(replay.get<double>("Frequency"), 819.2);
    EXPECT_EQ(replay.get<int>("Calib Version"), 7);
    EXPECT_FALSE(replay.isWritable("Frequency"));
    EXPECT_FALSE(replay.isWritable("Calib Version"));
}

TEST_F(ReplayLoadTest, FileWithAFrequencyIsPacedByItsTimeStamps) {
    columns({"a", "COUNT"});
    write({});
    load();
    EXPECT_TRUE(replay.isWritable("Replay"));
    EXPECT_TRUE(replay.isWritable("AutoReplay"));
    EXPECT_TRUE(replay.isWritable("EnableFileTimeStamp"));
    EXPECT_TRUE(replay.isWritable("TimeStampColName"));
    EXPECT_FALSE(replay.isWritable("SampleDelay"));
}

TEST_F(ReplayLoadTest, FileWithoutAFrequencyIsPacedByTheDelay) {
    columns({"a", "COUNT"}, 0.0);
    write({});
    load();
    EXPECT_TRUE(replay.isWritable("Replay"));
    EXPECT_TRUE(replay.isWritable("AutoReplay"));
    EXPECT_FALSE(replay.isWritable("EnableFileTimeStamp"));
    EXPECT_FALSE(replay.isWritable("TimeStampColName"));
    EXPECT_TRUE(replay.isWritable("SampleDelay"));
}

TEST_F(ReplayLoadTest, EmptyNameRemovesThePinsAndDoesNothingMore) {
    columns({"a", "COUNT"});
    write({});
    load();
    replay.set("Load File", "");
    EXPECT_THAT(replay.outputNames(), IsEmpty());
    EXPECT_TRUE(replay.isWritable("Replay"));
    EXPECT_EQ(replay.get<double>("Frequency"), 100.0);
}

TEST_F(ReplayLoadTest, MissingFileIsNotValid) {
    file = folder.file("missing.sf");
    expectLoadFails<Poco::IOException>("File not valid.");
}

TEST_F(ReplayLoadTest, PathWithoutFileNameIsNotValidAndLeavesNoOldFileOpen) {
    columns({"a", "COUNT"});
    write({{1.0, 2.0}});
    load();
    file = folder.path() + "/";
    expectLoadFails<Poco::IOException>("File not valid.");
}

TEST_F(ReplayLoadTest, FolderIsNotValid) {
    file = folder.path();
    expectLoadFails<Poco::IOException>("File not valid.");
}

TEST_F(ReplayLoadTest, FailedLoadAfterAGoodOneLeavesNothingOfIt) {
    columns({"a", "COUNT"});
    write({{1.0, 2.0}});
    load();
    const std::string good = file;
    file = folder.file("missing.sf");
    expectLoadFails<Poco::IOException>("File not valid.");
    EXPECT_EQ(replay.get<std::string>("Load File"), good);
    expectThrow<Poco::NoPermissionException>("Property 'Replay' is not writable",
                                             [&] { replay.set("Replay", true); });
    replay.trigger("Reload File");
    EXPECT_THAT(replay.outputNames(), ElementsAre("a", "COUNT"));
}

TEST_F(ReplayLoadTest, GoodLoadAfterAFailedOneReplaysAgain) {
    columns({"a", "COUNT"});
    write({{1.5, 2.0}});
    const std::string good = file;
    file = folder.file("missing.sf");
    expectLoadFails<Poco::IOException>("File not valid.");
    file = good;
    load();
    EXPECT_TRUE(replay.isWritable("Replay"));
    EXPECT_TRUE(replay.isWritable("AutoReplay"));
    replay.watch();
    replay.set("Replay", true);
    replay.step();
    EXPECT_EQ(replay.pullValues("a"), (Rows{{1.5}}));
}

TEST_F(ReplayLoadTest, RelativeNameBelongsToTheCurrentDirectory) {
    Support::writeBytes(file, "no sensor file");
    std::string up;
    for (int i = 0; i < Poco::Path(Poco::Path::current()).depth(); ++i)
        up += "../";
    // Told as the absolute path that it stands for.
    expectThrow<Poco::DataException>("Format error in file : '" + file + "', check binary mode!",
                                     [&] { replay.set("Load File", up + file.substr(1)); });
}

TEST_F(ReplayLoadTest, ReloadWithoutAFileNameDoesNothing) {
    replay.trigger("Reload File");
    EXPECT_THAT(replay.outputNames(), IsEmpty());
    EXPECT_TRUE(replay.isWritable("Replay"));
}

TEST_F(ReplayLoadTest, FileThatIsNoSensorFileIsNamed) {
    Support::writeBytes(file, "time,ax,ay\n1,2,3\n");
    expectLoadFails<Poco::DataException>("Format error in file : '" + file +
                                         "', check binary mode!");
    Support::writeBytes(file, "");
    expectLoadFails<Poco::DataException>("Format error in file : '" + file +
                                         "', check binary mode!");
}

TEST_F(ReplayLoadTest, TruncatedHeadersNeverLoad) {
    columns({"a", "COUNT"});
    config.addCalibData("Gain", column({1.0}));
    write({});
    const std::string bytes = Support::readBytes(file);
    for (std::size_t size = 0; size < bytes.size(); ++size) {
        Support::writeBytes(file, bytes.substr(0, size));
        EXPECT_THROW(load(), Poco::DataException) << size;
        expectUnloaded();
    }
    Support::writeBytes(file, bytes);
    load();
}

TEST_F(ReplayLoadTest, SingleColumnIsRefused) {
    columns({"a"}, 50.0);
    write({{1.0}});
    expectLoadFails<Poco::DataException>("File format is not valid");
    // What its header tells is shown all the same.
    EXPECT_EQ(replay.get<double>("Frequency"), 50.0);
    EXPECT_FALSE(replay.isWritable("Frequency"));
}

TEST_F(ReplayLoadTest, RefusedFileIsNotKeptOpen) {
    columns({"a"});
    write({{1.0}});
    const std::size_t before = Support::openFileCount();
    expectLoadFails<Poco::DataException>("File format is not valid");
    EXPECT_EQ(Support::openFileCount(), before);
}

TEST_F(ReplayLoadTest, ColumnsWithoutANameAreRefused) {
    columns({"a", ""});
    write({{1.0, 2.0}});
    expectLoadFails<Poco::DataException>("File format is not valid");
}

TEST_F(ReplayLoadTest, CalibrationFilesAreRefused) {
    columns({});
    config.setCalibOnly(true);
    config.addCalibData("Gain", column({1.0}));
    write({});
    expectLoadFails<Poco::DataException>("File format is not valid");
}

TEST_F(ReplayLoadTest, ReloadReadsTheFileAgain) {
    columns({"a", "COUNT"});
    write({});
    load();
    columns({"b", "c"}, 50.0);
    write({});
    replay.trigger("Reload File");
    EXPECT_THAT(replay.outputNames(), ElementsAre("b", "c"));
    EXPECT_EQ(replay.get<double>("Frequency"), 50.0);
}

TEST_F(ReplayLoadTest, SettingTheSameNameLoadsAgain) {
    columns({"a", "COUNT"});
    write({});
    load();
    columns({"b", "c"});
    write({});
    load();
    EXPECT_THAT(replay.outputNames(), ElementsAre("b", "c"));
}

TEST_F(ReplayLoadTest, NameIsExpandedAndKeptAsTyped) {
    columns({"a", "COUNT"});
    write({});
    setenv("QUORIL_TEST_FOLDER", folder.path().c_str(), 1);
    replay.set("Load File", "$QUORIL_TEST_FOLDER/a.sf");
    EXPECT_THAT(replay.outputNames(), ElementsAre("a", "COUNT"));
    EXPECT_EQ(replay.get<std::string>("Load File"), "$QUORIL_TEST_FOLDER/a.sf");
    replay.trigger("Reload File");
    EXPECT_THAT(replay.outputNames(), ElementsAre("a", "COUNT"));
}

TEST_F(ReplayLoadTest, ShortestCommonPartIsTheUsersChoice) {
    columns({"AX", "AY", "COUNT"});
    write({});
    load();
    EXPECT_THAT(replay.outputNames(), ElementsAre("AX", "AY", "COUNT"));
    replay.set("MinSize AutoDetectName", 1);
    EXPECT_THAT(replay.outputNames(), ElementsAre("AX", "AY", "COUNT"));
    replay.trigger("Reload File");
    EXPECT_THAT(replay.outputNames(), ElementsAre("A", "COUNT"));
}

TEST_F(ReplayLoadTest, NamedColumnsAndRecordsMakeOnePinEach) {
    columns({"ACCX", "ACCY", "COUNT"});
    config.addCalibData("Gain", column({1.0}));
    config.addCalibData("Offset", column({2.0}));
    write({});
    replay.set("Auto Detect Output", false);
    replay.set("Manually Set ColsName", "COUNT; ACCX");
    replay.set("Manually Set Calibs Name", "Offset");
    load();
    EXPECT_THAT(replay.outputNames(), ElementsAre("COUNT", "ACCX", "Offset"));
}

TEST_F(ReplayLoadTest, NamesThatTheFileLacksAreRefused) {
    columns({"ACCX", "COUNT"});
    config.addCalibData("Gain", column({1.0}));
    write({});
    replay.set("Auto Detect Output", false);
    replay.set("Manually Set ColsName", "ACCX, ACC");
    replay.set("Manually Set Calibs Name", "Offset");
    expectLoadFails<Poco::DataException>("Impossible to find one or more ColName(s) in the file");
    replay.set("Manually Set ColsName", "ACCX");
    expectLoadFails<Poco::DataException>(
        "Impossible to find one or more CalibColName(s) in the file");
    replay.set("Manually Set Calibs Name", "Gain");
    load();
    EXPECT_THAT(replay.outputNames(), ElementsAre("ACCX", "Gain"));
}

TEST_F(ReplayLoadTest, LoadDisconnectsThePinsOfBefore) {
    columns({"a", "COUNT"});
    write({{1.0, 2.0}});
    load();
    replay.watch();
    load();
    replay.set("Replay", true);
    replay.step();
    EXPECT_THAT(replay.pull("a"), IsEmpty());
}
