#include "tests/filters/sensorfile/RecordFixture.hpp"
#include "tests/support/FileSizeLimit.hpp"
#include "tests/support/LogCatcher.hpp"

#include <Poco/Path.h>

using Support::column;
using Support::expectThrow;
using testing::ElementsAre;
using testing::IsEmpty;

class RecordStartStopTest : public RecordFixture {
 protected:
    [[nodiscard]] bool exists(const std::string& path) const { return Poco::File(path).exists(); }
};

TEST_F(RecordStartStopTest, FileIsCreatedAtTheStartAndItsHeaderAtTheFirstCall) {
    makePins({{"a, b", "DOUBLE"}});
    EXPECT_FALSE(exists(file));
    start();
    EXPECT_TRUE(exists(file));
    EXPECT_EQ(Support::readBytes(file), "");
    record({1.0, 2.0});
    stop();
    EXPECT_EQ(rows(), (Rows{{1.0, 2.0}}));
}

TEST_F(RecordStartStopTest, FileThatExistsIsEmptied) {
    Support::writeBytes(file, "old content");
    makePins({{"a", "DOUBLE"}});
    start();
    stop();
    EXPECT_EQ(Support::readBytes(file), "");
}

TEST_F(RecordStartStopTest, EmptyFileNameIsRefused) {
    expectThrow<Poco::IOException>("File not found : " + Poco::Path::current(),
                                   [&] { rec.set("Record", true); });
    EXPECT_FALSE(isRecording());
    EXPECT_THAT(rec.lockedNames(), ElementsAre("Calib Version"));
}

TEST_F(RecordStartStopTest, FileNameThatEndsWithASeparatorIsRefused) {
    rec.set("File Name", folder.path() + "/");
    expectThrow<Poco::IOException>("File not found : " + folder.path() + "/",
                                   [&] { rec.set("Record", true); });
    EXPECT_FALSE(isRecording());
}

TEST_F(RecordStartStopTest, RelativeFileNameIsToldAsAbsolute) {
    rec.set("File Name", "no such folder/");
    expectThrow<Poco::IOException>("File not found : " + Poco::Path::current() + "no such folder/",
                                   [&] { rec.set("Record", true); });
}

TEST_F(RecordStartStopTest, FileThatCannotBeOpenedIsRefused) {
    file = folder.file("missing/a.sf");
    rec.set("File Name", file);
    expectThrow<Poco::IOException>("Problem while openning : " + file,
                                   [&] { rec.set("Record", true); });
    EXPECT_FALSE(isRecording());
    EXPECT_THAT(rec.lockedNames(), ElementsAre("Calib Version"));
}

TEST_F(RecordStartStopTest, FileIsLookedAtBeforeTheNames) {
    makePins({{"", "DOUBLE"}});
    expectThrow<Poco::IOException>("File not found : " + Poco::Path::current(),
                                   [&] { rec.set("Record", true); });
    file = folder.file("missing/a.sf");
    rec.set("File Name", file);
    expectThrow<Poco::IOException>("Problem while openning : " + file,
                                   [&] { rec.set("Record", true); });
}

TEST_F(RecordStartStopTest, TimeStampColumnNeedsAName) {
    makePins({{"", "DOUBLE"}});
    rec.set("Save Timestamp", true);
    rec.set("File Name", file);
    expectThrow<Poco::IOException>("TimeStamp Col Name is empty!",
                                   [&] { rec.set("Record", true); });
    EXPECT_FALSE(isRecording());
}

TEST_F(RecordStartStopTest, EveryPinNeedsNames) {
    makePins({{"a", "DOUBLE"}, {"", "DOUBLE"}});
    rec.set("Calib Pins Number", 1);
    rec.set("File Name", file);
    expectThrow<Poco::IOException>("ColNames#2 is empty!", [&] { rec.set("Record", true); });
    rec.set("ColNames#2", "b");
    expectThrow<Poco::IOException>("CalibColNames#1 is empty!", [&] { rec.set("Record", true); });
    rec.set("CalibColNames#1", "C");
    rec.set("Record", true);
    EXPECT_TRUE(isRecording());
}

TEST_F(RecordStartStopTest, StartRefusedForANameLocksNothingAndKeepsTheFile) {
    makePins({{"", "DOUBLE"}});
    rec.set("File Name", file);
    expectThrow<Poco::IOException>("ColNames#1 is empty!", [&] { rec.set("Record", true); });
    EXPECT_THAT(rec.lockedNames(), ElementsAre("Calib Version"));
    EXPECT_TRUE(exists(file));
}

TEST_F(RecordStartStopTest, NextStartNeverRecordsIntoTheFileOfARefusedOne) {
    makePins({{"", "DOUBLE"}});
    rec.set("File Name", file);
    expectThrow<Poco::IOException>("ColNames#1 is empty!", [&] { rec.set("Record", true); });
    rec.set("ColNames#1", "a");
    const std::string first = file;
    file = folder.file("b.sf");
    start();
    record({4.0});
    stop();
    EXPECT_EQ(Support::readBytes(first), "");
    EXPECT_EQ(rows(), (Rows{{4.0}}));
}

TEST_F(RecordStartStopTest, CallsAfterARefusedStartDoNothing) {
    makePins({{"", "DOUBLE"}});
    rec.set("File Name", file);
    expectThrow<Poco::IOException>("ColNames#1 is empty!", [&] { rec.set("Record", true); });
    record({1.0});
    rec.set("ColNames#1", "a");
    start();
    rec.push("input#1", column({2.0}));
    rec.step();
    stop();
    EXPECT_THAT(rows(), ElementsAre(ElementsAre(1.0)));
}

TEST_F(RecordStartStopTest, StoppingAnIdleFilterStillDemandsNames) {
    rec.set("Record", false);
    makePins({{"", "DOUBLE"}});
    expectThrow<Poco::IOException>("ColNames#1 is empty!", [&] { rec.set("Record", false); });
    EXPECT_THAT(rec.lockedNames(), ElementsAre("Calib Version"));
}

TEST_F(RecordStartStopTest, StartingTwiceGoesOnWithTheSameFile) {
    makePins({{"a", "DOUBLE"}});
    start();
    record({1.0});
    rec.set("Record", true);
    record({2.0});
    stop();
    EXPECT_EQ(rows(), (Rows{{1.0}, {2.0}}));
}

TEST_F(RecordStartStopTest, EachRecordingHasAHeaderOfItsOwn) {
    makePins({{"a", "DOUBLE"}});
    start();
    record({1.0});
    stop();
    rec.set("ColNames#1", "b;c");
    file = folder.file("b.sf");
    start();
    record({2.0, 3.0});
    stop();
    EXPECT_THAT(columnNames(), ElementsAre("b", "c"));
    EXPECT_EQ(rows(), (Rows{{2.0, 3.0}}));
}

TEST_F(RecordStartStopTest, RecordingAgainIntoTheSameFileReplacesIt) {
    makePins({{"a", "DOUBLE"}});
    for (const double value : {1.0, 2.0}) {
        start();
        record({value});
        stop();
    }
    EXPECT_EQ(rows(), (Rows{{2.0}}));
}

TEST_F(RecordStartStopTest, EncodingIsChosenAtTheStart) {
    makePins({{"a", "DOUBLE"}});
    rec.set("Binary", true);
    start();
    rec.set("Binary", false);
    record({1.5});
    stop();
    EXPECT_EQ(rows(/*binary=*/true), (Rows{{1.5}}));
}

TEST_F(RecordStartStopTest, FilterThatIsDestroyedWhileRecordingClosesItsFile) {
    {
        FilterRecordSensorFile other("other");
        Support::FilterHarness harness(other);
        harness.set("Pins Number", 1);
        harness.set("ColNames#1", "a");
        harness.choose("ColTypes#1", "DOUBLE");
        harness.set("Binary", true);
        harness.set("File Name", file);
        harness.set("Record", true);
        harness.push("input#1", column({1.5}));
        harness.step();
    }
    EXPECT_EQ(rows(/*binary=*/true), (Rows{{1.5}}));
}

TEST_F(RecordStartStopTest, HundredRecordingsLeaveNothingBehind) {
    makePins({{"a", "INT32"}});
    for (int i = 0; i < 100; ++i) {
        start();
        record({1.0 * i});
        record({2.0 * i});
        stop();
        ASSERT_EQ(rows(), (Rows{{1.0 * i}, {2.0 * i}}));
    }
    EXPECT_THAT(columnNames(), ElementsAre("a"));
}

TEST_F(RecordStartStopTest, FullDiskEndsTheRecordingAfterItsLastWholeRow) {
    makePins({{"a", "DOUBLE"}});
    start();
    record({1.0});
    {
        const Support::FileSizeLimit full(Support::readBytes(file).size() + 4);
        record({22222222.0});
    }
    EXPECT_FALSE(isRecording());
    EXPECT_THAT(rec.lockedNames(), ElementsAre("Calib Version"));
    EXPECT_EQ(rows(), (Rows{{1.0}}));
    record({3.0});
    EXPECT_EQ(rows(), (Rows{{1.0}}));
}

TEST_F(RecordStartStopTest, RecordingCanStartAnewAfterAFullDisk) {
    makePins({{"a", "DOUBLE"}});
    {
        const Support::FileSizeLimit full(4);
        start();
        record({1.0});
    }
    EXPECT_FALSE(isRecording());
    start();
    rec.step();
    stop();
    EXPECT_THAT(columnNames(), ElementsAre("a"));
    // The header had failed before the sample was taken.
    EXPECT_EQ(rows(), (Rows{{1.0}}));
}

TEST_F(RecordStartStopTest, FullDiskIsLoggedOnce) {
    makePins({{"a", "DOUBLE"}});
    Support::LogCatcher log;
    start();
    {
        const Support::FileSizeLimit full(4);
        for (const double value : {1.0, 2.0, 3.0})
            record({value});
    }
    stop();
    ASSERT_EQ(log.messages().size(), 1U);
    EXPECT_EQ(log.messages()[0].getText(),
              "recorder: the recording to '" + file + "' ended by itself: File too large");
    EXPECT_EQ(log.messages()[0].get("culprit"), "file");
}

TEST_F(RecordStartStopTest, StopThatCannotWriteTheRestTellsSoOnce) {
    makePins({{"a", "DOUBLE"}});
    rec.set("Binary", true);
    start();
    record({1.0});
    const Support::FileSizeLimit full(1);
    EXPECT_THROW(stop(), Poco::IOException);
    stop();
    EXPECT_FALSE(isRecording());
    EXPECT_THAT(rec.lockedNames(), ElementsAre("Calib Version"));
}
