#include "tests/filters/kivra2/Kivra2RecordFixture.hpp"
#include "tests/support/FileSizeLimit.hpp"
#include "tests/support/LogCatcher.hpp"

#include <cmath>
#include <limits>

using Support::matrix;
using testing::ElementsAre;
using testing::IsEmpty;

class RecordKivra2RowsTest : public Kivra2RecordFixture {
 protected:
    // Values of the columns from the first to the last, without the header's bytes.
    [[nodiscard]] std::string sampleBytes() const {
        SensorFile::SensorFileReader reader;
        reader.open(file, /*binary=*/true);
        return Support::readBytes(file).substr(static_cast<std::size_t>(reader.position()));
    }

    // What COUNT becomes for the first element of a frame number.
    double recordCount(double number) {
        start();
        pushPlain();
        rec.push("FrameNumber", line({number, 0.0, 100.0}));
        rec.step();
        stop();
        return rows().at(0).at(0);
    }

    Quoril::Core::InputPin<Eigen::MatrixXd>& pin(const std::string& name) {
        return dynamic_cast<Quoril::Core::InputPin<Eigen::MatrixXd>&>(rec.input(name));
    }
};

TEST_F(RecordKivra2RowsTest, RowIsCounterAccelerometerMagnetometerButton) {
    recordFile();
    EXPECT_EQ(rows(), (Rows{{0.0, 1.0, 2.0, 3.0, 4.0, 5.0, 6.0, 7.0}}));
}

TEST_F(RecordKivra2RowsTest, GyroscopeStandsBeforeTheButton) {
    rec.set("Save Gyro", true);
    start();
    pushPlain();
    rec.push("3g", line({10.0, 11.0, 12.0}));
    rec.step();
    stop();
    EXPECT_EQ(rows(), (Rows{{0.0, 1.0, 2.0, 3.0, 4.0, 5.0, 6.0, 10.0, 11.0, 12.0, 7.0}}));
}

TEST_F(RecordKivra2RowsTest, RowsAreBigEndianWithoutAnythingBetween) {
    start();
    pushPlain({1.0, -2.0, 258.0}, {-1.9, 40000.0, 32767.0}, 300.7);
    rec.push("FrameNumber", line({0x1234, 0.0, 100.0}));
    rec.step();
    stop();
    EXPECT_EQ(sampleBytes(), std::string("\x12\x34\x00\x01\xff\xfe\x01\x02\xff\xff\x9c\x40\x7f\xff"
                                         "\x2c",
                                         15));
}

TEST_F(RecordKivra2RowsTest, CounterKeepsTheLow16BitsOfTheTruncatedNumber) {
    EXPECT_EQ(recordCount(70000.0), 4464.0);
    EXPECT_EQ(recordCount(65537.9), 1.0);
    EXPECT_EQ(recordCount(65535.0), 65535.0);
    EXPECT_EQ(recordCount(65536.0), 0.0);
    EXPECT_EQ(recordCount(-0.9), 0.0);
    EXPECT_EQ(recordCount(-1.0), 65535.0);
    EXPECT_EQ(recordCount(-70000.5), 61072.0);
    EXPECT_EQ(recordCount(1e15 + 1.0), 32769.0);
}

TEST_F(RecordKivra2RowsTest, CounterThatIsNoNumberOfFramesIs0) {
    EXPECT_EQ(recordCount(std::numeric_limits<double>::quiet_NaN()), 0.0);
    EXPECT_EQ(recordCount(std::numeric_limits<double>::infinity()), 0.0);
    EXPECT_EQ(recordCount(-std::numeric_limits<double>::infinity()), 0.0);
    EXPECT_EQ(recordCount(1e300), 0.0);
}

TEST_F(RecordKivra2RowsTest, FirstElementsOfFrameNumberAndButtonCount) {
    start();
    pushPlain();
    rec.push("FrameNumber", matrix({{5.0, 6.0}, {7.0, 8.0}}));
    rec.step();
    rec.push("3a", line({1.0, 2.0, 3.0}));
    rec.push("3m", line({4.0, 5.0, 6.0}));
    rec.push("Button", matrix({{9.0, 8.0}, {7.0, 6.0}}));
    rec.push("FrameNumber", line({6.0}));
    rec.step();
    stop();
    EXPECT_EQ(rows(), (Rows{{5.0, 1.0, 2.0, 3.0, 4.0, 5.0, 6.0, 7.0},
                            {6.0, 1.0, 2.0, 3.0, 4.0, 5.0, 6.0, 9.0}}));
}

TEST_F(RecordKivra2RowsTest, OneRowACall) {
    start();
    pushPlain({1.0, 1.0, 1.0});
    pushPlain({2.0, 2.0, 2.0});
    rec.step();
    stop();
    EXPECT_EQ(rows(), (Rows{{0.0, 1.0, 1.0, 1.0, 4.0, 5.0, 6.0, 7.0}}));
}

TEST_F(RecordKivra2RowsTest, NothingIsTakenWhileAPinLacksItsSample) {
    rec.set("Save Gyro", true);
    start();
    const std::vector<std::string> needed{"3a", "3m", "3g", "Button", "FrameNumber"};
    double value = 0.0;
    for (const std::string& late : needed) {
        value += 1.0;
        const std::string before = Support::readBytes(file);
        for (const std::string& name : needed)
            rec.connect(name);
        for (const std::string& name : needed)
            if (name != late) rec.push(name, line({value, value, value}));
        rec.step(2);
        EXPECT_EQ(Support::readBytes(file), before) << late;
        rec.push(late, line({value, value, value}));
        rec.step();
    }
    stop();
    Rows expected;
    for (double v = 1.0; v <= value; v += 1.0)
        expected.emplace_back(11, v);
    EXPECT_EQ(rows(), expected);
}

TEST_F(RecordKivra2RowsTest, PinsThatAreNotConnectedGiveNoRow) {
    start();
    rec.push("3a", line({1.0, 2.0, 3.0}));
    rec.push("3m", line({1.0, 2.0, 3.0}));
    rec.step();
    stop();
    EXPECT_EQ(Support::readBytes(file), "");
}

TEST_F(RecordKivra2RowsTest, EmptySampleCostsTheRowButNotTheFrameNumber) {
    for (const char* empty : {"3a", "3m", "Button"}) {
        start();
        for (const char* name : {"3a", "3m", "Button"})
            rec.push(name, empty == std::string(name) ? Eigen::MatrixXd() : line({8.0, 8.0, 8.0}));
        rec.push("FrameNumber", line({5.0, 0.0, 50.0}));
        rec.step();
        pushPlain();
        rec.step();
        stop();
        EXPECT_EQ(rows(), (Rows{{5.0, 1.0, 2.0, 3.0, 4.0, 5.0, 6.0, 7.0}})) << empty;
        EXPECT_EQ(header().getSampleFrequency(), 50.0) << empty;
    }
}

TEST_F(RecordKivra2RowsTest, EmptyFrameNumberCostsTheRowButNotTheGyroscope) {
    rec.set("Save Gyro", true);
    start();
    pushPlain({8.0, 8.0, 8.0});
    rec.push("FrameNumber", Eigen::MatrixXd());
    rec.push("3g", line({10.0, 11.0, 12.0}));
    rec.step();
    EXPECT_THAT(rows(), IsEmpty());
    pushPlain();
    rec.push("FrameNumber", line({5.0}));
    rec.step();
    stop();
    EXPECT_EQ(rows(), (Rows{{5.0, 1.0, 2.0, 3.0, 4.0, 5.0, 6.0, 10.0, 11.0, 12.0, 7.0}}));
}

TEST_F(RecordKivra2RowsTest, EmptyGyroscopeCostsTheRow) {
    rec.set("Save Gyro", true);
    start();
    pushPlain({8.0, 8.0, 8.0});
    rec.push("3g", Eigen::MatrixXd());
    rec.step();
    pushPlain();
    rec.push("3g", line({10.0, 11.0, 12.0}));
    rec.step();
    stop();
    EXPECT_EQ(rows(), (Rows{{0.0, 1.0, 2.0, 3.0, 4.0, 5.0, 6.0, 10.0, 11.0, 12.0, 7.0}}));
}

TEST_F(RecordKivra2RowsTest, PausedCallsTakeTheSamplesAndWriteTheHeaderOnly) {
    rec.set("Save Gyro", true);
    start();
    rec.set("Pause", true);
    pushPlain({8.0, 8.0, 8.0});
    rec.push("FrameNumber", line({1.0, 0.0, 100.0}));
    rec.push("3g", line({8.0, 8.0, 8.0}));
    rec.step();
    rec.set("Pause", false);
    rec.step();
    pushPlain();
    rec.push("FrameNumber", line({2.0, 0.0, 200.0}));
    rec.push("3g", line({10.0, 11.0, 12.0}));
    rec.step();
    stop();
    EXPECT_EQ(header().getSampleFrequency(), 100.0);
    EXPECT_EQ(rows(), (Rows{{2.0, 1.0, 2.0, 3.0, 4.0, 5.0, 6.0, 10.0, 11.0, 12.0, 7.0}}));
}

TEST_F(RecordKivra2RowsTest, SamplesThatWaitedBeforeTheStartAreRecorded) {
    pushPlain();
    rec.step();
    start();
    rec.step();
    stop();
    EXPECT_EQ(rows().size(), 1U);
}

TEST_F(RecordKivra2RowsTest, TakenSamplesLeaveTheirTimes) {
    rec.set("Save Gyro", true);
    start();
    double time = 1.0;
    const std::vector<std::string> names{"3a", "3m", "Button", "FrameNumber", "3g"};
    for (const std::string& name : names)
        rec.push(name, line({1.0, 1.0, 1.0}), time++);
    rec.step();
    std::vector<double> times;
    for (const std::string& name : names)
        times.push_back(pin(name).getLastTime());
    EXPECT_THAT(times, ElementsAre(1.0, 2.0, 3.0, 4.0, 5.0));
}

TEST_F(RecordKivra2RowsTest, MatricesAreWrittenColumnByColumn) {
    start();
    rec.push("3a", matrix({{1.0, 3.0}, {2.0, 4.0}}));
    rec.push("3m", matrix({{5.0}, {6.0}}));
    rec.push("Button", line({7.0}));
    rec.step();
    stop();
    EXPECT_EQ(rows(), (Rows{{0.0, 1.0, 2.0, 3.0, 4.0, 5.0, 6.0, 7.0}}));
}

TEST_F(RecordKivra2RowsTest, ElementTooManyMovesEveryLaterValue) {
    start();
    pushPlain({1.0, 2.0, 3.0, 4.0}, {5.0, 6.0, 300.0}, 8.0);
    rec.step();
    pushPlain({-1.0, -2.0, -3.0}, {-4.0, -5.0, -6.0}, 9.0);
    rec.step();
    stop();
    // The last value, 9, begins a third row that no reader delivers.
    EXPECT_EQ(rows(), (Rows{{0.0, 1.0, 2.0, 3.0, 4.0, 5.0, 6.0, 44.0},
                            {8.0, 0.0, -1.0, -2.0, -3.0, -4.0, -5.0, 250.0}}));
    EXPECT_EQ(sampleBytes().size(), 2U * 15U + 2U);
    EXPECT_EQ(sampleBytes().substr(30), std::string("\0\x09", 2));
}

TEST_F(RecordKivra2RowsTest, ElementTooFewMovesEveryLaterValue) {
    start();
    pushPlain({1.0, 2.0}, {3.0, 4.0, 5.0}, 6.0);
    rec.step();
    pushPlain({-1.0, -2.0, -3.0}, {-4.0, -5.0, -6.0}, 9.0);
    rec.step();
    stop();
    EXPECT_EQ(rows(), (Rows{{0.0, 1.0, 2.0, 3.0, 4.0, 5.0, 6.0, 0.0}}));
    EXPECT_EQ(sampleBytes().size(), 15U + 7U * 2U);
}

TEST_F(RecordKivra2RowsTest, OddGyroscopeMovesTheButton) {
    rec.set("Save Gyro", true);
    start();
    pushPlain();
    rec.push("3g", line({10.0, 11.0}));
    rec.step();
    pushPlain();
    rec.push("3g", line({10.0, 11.0, 12.0, 13.0}));
    rec.step();
    stop();
    EXPECT_EQ(rows(), (Rows{{0.0, 1.0, 2.0, 3.0, 4.0, 5.0, 6.0, 10.0, 11.0, 7.0, 0.0},
                            {1.0, 2.0, 3.0, 4.0, 5.0, 6.0, 10.0, 11.0, 12.0, 13.0, 7.0}}));
}

TEST_F(RecordKivra2RowsTest, NextFileBeginsWithACounterThoughTheLastOneWasMoved) {
    start();
    pushPlain({1.0, 2.0, 3.0, 4.0});
    rec.step();
    stop();
    recordFile();
    EXPECT_EQ(rows(), (Rows{{0.0, 1.0, 2.0, 3.0, 4.0, 5.0, 6.0, 7.0}}));
}

TEST_F(RecordKivra2RowsTest, ValuesWithoutAnIntegerDoNoHarm) {
    start();
    const double nan = std::numeric_limits<double>::quiet_NaN();
    const double infinity = std::numeric_limits<double>::infinity();
    pushPlain({nan, infinity, -infinity}, {1e300, -1e300, nan}, nan);
    rec.step();
    recordPlain();
    stop();
    EXPECT_EQ(rows().at(1), (Row{0.0, 1.0, 2.0, 3.0, 4.0, 5.0, 6.0, 7.0}));
}

TEST_F(RecordKivra2RowsTest, FullDiskEndsTheRecordingAfterItsLastWholeRow) {
    start();
    recordPlain();
    const std::size_t size = 40 + 8 * 34 + 40 + 16 + 15;
    {
        const Support::FileSizeLimit full(size + 4);
        for (int i = 0; i < 100000 && isRecording(); ++i)
            recordPlain();
    }
    EXPECT_FALSE(isRecording());
    EXPECT_THAT(rec.lockedNames(), ElementsAre("Pause", "Calib Version"));
    EXPECT_EQ(Support::readBytes(file).size(), size);
    EXPECT_EQ(rows(), (Rows{{0.0, 1.0, 2.0, 3.0, 4.0, 5.0, 6.0, 7.0}}));
    recordFile();
    EXPECT_EQ(rows().size(), 1U);
}

TEST_F(RecordKivra2RowsTest, FullDiskIsLoggedOnce) {
    Support::LogCatcher log;
    start();
    {
        const Support::FileSizeLimit full(4);
        recordPlain();
        recordPlain();
    }
    ASSERT_EQ(log.messages().size(), 1U);
    EXPECT_EQ(log.messages()[0].getText(),
              "recorder: the recording to '" + file + "' ended by itself: File too large");
    EXPECT_EQ(log.messages()[0].get("culprit"), "file");
}

TEST_F(RecordKivra2RowsTest, CallAfterAFailedStopLeavesTheNextFileWhole) {
    start();
    recordPlain();
    {
        const Support::FileSizeLimit full(1);
        EXPECT_THROW(stop(), Poco::IOException);
    }
    // "Record" still reads true, but nothing is open.
    ASSERT_TRUE(isRecording());
    recordPlain();
    rec.set("Record", true);
    rec.step();
    stop();
    EXPECT_FALSE(isRecording());
    EXPECT_THAT(columnNames(),
                ElementsAre("COUNT", "ACCX", "ACCY", "ACCZ", "MAGX", "MAGY", "MAGZ", "INFO"));
    EXPECT_EQ(rows(), (Rows{{0.0, 1.0, 2.0, 3.0, 4.0, 5.0, 6.0, 7.0}}));
}
