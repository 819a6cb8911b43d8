#include "tests/filters/sensorfile/RecordFixture.hpp"
#include "tests/support/TestTime.hpp"

using SensorFile::SensorFileConfig;
using Support::column;
using Support::matrix;
using testing::ElementsAre;
using testing::IsEmpty;

class RecordHeaderTest : public RecordFixture {
 protected:
    void makeCalibPins(const std::vector<std::pair<std::string, std::string>>& pins) {
        rec.set("Calib Pins Number", static_cast<int>(pins.size()));
        for (std::size_t i = 0; i < pins.size(); ++i) {
            const std::string number = std::to_string(i + 1);
            rec.set("CalibColNames#" + number, pins[i].first);
            rec.choose("CalibColTypes#" + number, pins[i].second);
        }
    }

    void recordOne(bool binary = false) {
        rec.set("Binary", binary);
        start();
        record({1.0});
        stop();
    }

    [[nodiscard]] std::vector<std::string> records(bool binary = false) const {
        const SensorFileConfig config = header(binary);
        std::vector<std::string> names;
        for (std::size_t i = 0; i < config.getCalibCount(); ++i)
            names.push_back(config.getCalibName(i));
        return names;
    }

    [[nodiscard]] Eigen::MatrixXd doubles(std::size_t index) const {
        const SensorFileConfig config = header();
        return dynamic_cast<const SensorFileConfig::CalibData<Eigen::MatrixXd>&>(
                   config.getCalibData(index))
            .getMatrix();
    }
};

TEST_F(RecordHeaderTest, TextRecordingHasExactlyTheseBytes) {
    const Support::FixedClock clock(Poco::DateTime(2017, 5, 23, 10, 4, 31));
    makePins({{"ax ay", "INT16"}});
    makeCalibPins({{"Gain", "DOUBLE"}, {"Steps", "INT32"}});
    rec.set("Save Timestamp", true);
    rec.set("TimeStampColName", "TIME");
    rec.set("Freq", 819.2);
    rec.set("Double Precision", 3);
    rec.push("calibInput#1", matrix({{1.5, -2.0}, {0.25, 4.0}}));
    rec.push("calibInput#2", matrix({{1.9, -1.9}}));
    start();
    rec.push("TimeStampPin", column({0.0051}));
    record({-12.0, 7.9});
    rec.push("TimeStampPin", column({1.5}));
    record({0.0, 32767.0});
    stop();
    EXPECT_EQ(Support::readBytes(file),
              "Header id: \taf243246\t56fe1289\t9078bc29\t80340101\t\n"
              "23/05/2017\t10:04:31\n"
              "Sample frequency:\t819.2 (Hz)\n"
              "3 column(s):\tTIME\tdouble\t(8) \tax\tint16\t(2) \tay\tint16\t(2) \t\n"
              "\n"
              "Calib id: \taf243246\t56fe1289\t9078bc29\t80360200\t\n"
              "Calib datetime:\t23/05/2017\t10:04:31\n"
              "Calib version:\t2\t\n"
              "Number of Calibration coefficient:\t2\t\n"
              "Gain\tdouble\t(2, 2)\t\n"
              "1.5\t-2\t\n"
              "0.25\t4\t\n"
              "Steps\tint32\t(1, 2)\t\n"
              "1\t-1\t\n"
              "\n"
              "Data id: \taf243246\t56fe1289\t9078bc29\t80350100\t\n"
              "0.005\t-12\t7\t\n"
              "1.5\t0\t32767\t\n");
}

TEST_F(RecordHeaderTest, BinaryRecordingHasExactlyTheseBytes) {
    const Support::FixedClock clock(Poco::DateTime(2017, 5, 23, 10, 4, 31));
    makePins({{"n", "UINT8"}, {"x", "DOUBLE"}});
    makeCalibPins({{"K", "INT32"}});
    rec.set("Binary", true);
    rec.push("calibInput#1", column({-2.7}));
    start();
    rec.push("input#2", column({-2.0}));
    record({7.0});
    stop();
    using namespace std::string_literals;
    const std::string magic = "\xaf\x24\x32\x46\x56\xfe\x12\x89\x90\x78\xbc\x29"s;
    const std::string date = "\x17\x05\x11\x0a\x04\x1f"s;
    const std::string pad(31, '\0');
    EXPECT_EQ(Support::readBytes(file),
              magic + "\x80\x34\x01\x01"s + "\0\0\0\0\0\0\0\x6c"s + date + "\x40\x69\0\0\0\0\0\0"s +
                  "\0\x02"s + "\x01\x0b"s + "n" + pad + "\x08\x09"s + "x" + pad + magic +
                  "\x80\x36\x02\x00"s + "\0\0\0\0\0\0\0\x28"s + date + "\0\x02"s +
                  "\0\0\0\0\0\0\0\x01"s + "K" + pad + "\x07\x01\x01"s + "\xff\xff\xff\xfe"s +
                  magic + "\x80\x35\x01\x00"s + "\x07"s + "\xc0\0\0\0\0\0\0\0"s);
}

TEST_F(RecordHeaderTest, FrequencyAndPrecisionAreReadAtTheFirstCall) {
    makePins({{"a", "DOUBLE"}});
    rec.set("Double Precision", 2);
    start();
    rec.set("Freq", 50.5);
    record({0.126});
    rec.set("Freq", 60.5);
    record({0.5});
    stop();
    EXPECT_EQ(header().getSampleFrequency(), 50.5);
    EXPECT_EQ(rows(), (Rows{{0.13}, {0.5}}));
}

TEST_F(RecordHeaderTest, HeaderIsWrittenWithoutWaitingForData) {
    makePins({{"a", "DOUBLE"}});
    start();
    rec.step();
    stop();
    EXPECT_THAT(columnNames(), ElementsAre("a"));
    EXPECT_THAT(rows(), IsEmpty());
}

TEST_F(RecordHeaderTest, DatesAreThoseOfTheFirstCallOfEachRecording) {
    makePins({{"a", "DOUBLE"}});
    for (const int day : {1, 2}) {
        const Support::FixedClock clock(Poco::DateTime(2020, 3, day, 4, 5, 6));
        recordOne();
        EXPECT_EQ(header().getCreationTime(), Poco::DateTime(2020, 3, day, 4, 5, 6));
        EXPECT_EQ(header().getCalibTime(), Poco::DateTime(2020, 3, day, 4, 5, 6));
    }
}

TEST_F(RecordHeaderTest, CalibrationFormatIsTwo) {
    makePins({{"a", "DOUBLE"}});
    makeCalibPins({{"C", "DOUBLE"}});
    rec.push("calibInput#1", column({1.0}));
    recordOne();
    EXPECT_EQ(header().getCalibFormat(), 2);
}

TEST_F(RecordHeaderTest, OnlyConnectedPinsWithAMatrixGetARecord) {
    makePins({{"a", "DOUBLE"}});
    makeCalibPins({{"A", "DOUBLE"}, {"B", "DOUBLE"}, {"C", "DOUBLE"}, {"D", "DOUBLE"}});
    rec.connect("calibInput#2");
    rec.push("calibInput#3", Eigen::MatrixXd(0, 0));
    rec.push("calibInput#4", column({4.0}));
    recordOne();
    EXPECT_THAT(records(), ElementsAre("D"));
}

TEST_F(RecordHeaderTest, NewestMatrixIsTaken) {
    makePins({{"a", "DOUBLE"}});
    makeCalibPins({{"A", "DOUBLE"}});
    rec.push("calibInput#1", column({1.0}));
    rec.push("calibInput#1", column({2.0}));
    recordOne();
    EXPECT_EQ(doubles(0), column({2.0}));
}

TEST_F(RecordHeaderTest, NextRecordingUsesTheRememberedMatrices) {
    makePins({{"a", "DOUBLE"}});
    makeCalibPins({{"A", "DOUBLE"}, {"B", "INT32"}});
    rec.push("calibInput#1", column({1.0}));
    rec.push("calibInput#2", column({2.0}));
    recordOne();
    rec.set("CalibColNames#1", "New");
    recordOne();
    EXPECT_THAT(records(), ElementsAre("New", "B"));
    EXPECT_EQ(doubles(0), column({1.0}));
}

TEST_F(RecordHeaderTest, RecordNamesAreNotSplit) {
    makePins({{"a", "DOUBLE"}});
    makeCalibPins({{"my gain;1", "DOUBLE"}});
    rec.push("calibInput#1", column({1.0}));
    recordOne(/*binary=*/true);
    EXPECT_THAT(records(/*binary=*/true), ElementsAre("my gain;1"));
}

TEST_F(RecordHeaderTest, HeaderThatCannotBeWrittenEndsTheRecording) {
    makePins({{"a", "DOUBLE"}});
    makeCalibPins({{"Long", "DOUBLE"}});
    rec.set("Binary", true);
    // A record's row count is one byte in the file.
    rec.push("calibInput#1", Eigen::MatrixXd::Zero(256, 1));
    start();
    record({1.0});
    EXPECT_FALSE(isRecording());
    EXPECT_THAT(rec.lockedNames(), ElementsAre("Calib Version"));
    EXPECT_EQ(Support::readBytes(file), "");
}
