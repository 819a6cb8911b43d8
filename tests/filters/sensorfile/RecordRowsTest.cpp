#include "tests/filters/sensorfile/CallDuringEdit.hpp"
#include "tests/filters/sensorfile/RecordFixture.hpp"

#include <limits>

using Support::column;
using Support::matrix;
using testing::ElementsAre;
using testing::IsEmpty;

class RecordRowsTest : public RecordFixture {};

TEST_F(RecordRowsTest, NamesOfAPinShareItsTypeAndTakeItsElements) {
    makePins({{"ax, ay;az", "FLOAT"}});
    start();
    record({1.5, -2.5, 3.25});
    stop();
    EXPECT_THAT(columnNames(), ElementsAre("ax", "ay", "az"));
    const auto config = header();
    for (std::size_t i = 0; i < 3; ++i)
        EXPECT_EQ(config.getColumn(i).getTypeName(), "float");
    EXPECT_EQ(rows(), (Rows{{1.5, -2.5, 3.25}}));
}

TEST_F(RecordRowsTest, MatricesAreWrittenColumnByColumn) {
    makePins({{"a,b,c,d,e,f", "INT16"}});
    start();
    rec.push("input#1", matrix({{1.0, 2.0, 3.0}, {4.0, 5.0, 6.0}}));
    rec.step();
    stop();
    EXPECT_EQ(rows(), (Rows{{1.0, 4.0, 2.0, 5.0, 3.0, 6.0}}));
}

TEST_F(RecordRowsTest, RowJoinsTheSamplesOfAllPinsInTheirOrder) {
    makePins({{"a", "INT16"}, {"b,c", "DOUBLE"}});
    start();
    rec.push("input#2", column({2.5, 3.5}));
    rec.push("input#1", column({1.0}));
    rec.step();
    stop();
    EXPECT_EQ(rows(), (Rows{{1.0, 2.5, 3.5}}));
}

TEST_F(RecordRowsTest, OneRowACall) {
    makePins({{"a", "INT16"}});
    start();
    for (const double value : {1.0, 2.0, 3.0})
        rec.push("input#1", column({value}));
    rec.step(2);
    EXPECT_EQ(rec.input("input#1").getWaitingCount(), 1U);
    stop();
    EXPECT_EQ(rows(), (Rows{{1.0}, {2.0}}));
}

TEST_F(RecordRowsTest, CallsWithoutRecordingTakeNothing) {
    makePins({{"a", "INT16"}});
    record({1.0});
    EXPECT_EQ(rec.input("input#1").getWaitingCount(), 1U);
}

TEST_F(RecordRowsTest, CallsDoNothingWhileAnEditIsUnderWay) {
    makePins({{"a", "INT16"}});
    start();
    rec.push("input#1", column({1.0}));
    // Starting again locks the pins' properties again.
    const CallDuringEdit edit(filter, rec.property("ColNames#1"));
    rec.set("Record", true);
    EXPECT_EQ(edit.calls, 1);
    EXPECT_EQ(rec.input("input#1").getWaitingCount(), 1U);
    rec.step();
    EXPECT_EQ(rec.input("input#1").getWaitingCount(), 0U);
}

TEST_F(RecordRowsTest, SamplesThatWaitedBeforeTheStartAreRecordedFirst) {
    makePins({{"a", "INT16"}});
    record({1.0});
    start();
    record({2.0});
    stop();
    EXPECT_EQ(rows(), (Rows{{1.0}}));
    EXPECT_EQ(rec.input("input#1").getWaitingCount(), 1U);
}

TEST_F(RecordRowsTest, WithoutDataPinsNotEvenAHeaderIsWritten) {
    start();
    rec.step();
    stop();
    EXPECT_EQ(Support::readBytes(file), "");
}

TEST_F(RecordRowsTest, MissingSampleDropsWhatEarlierPinsGave) {
    makePins({{"a", "INT16"}, {"b", "INT16"}});
    start();
    rec.push("input#1", column({1.0}));
    rec.step();
    rec.push("input#2", column({2.0}));
    rec.step();
    rec.push("input#1", column({3.0}));
    rec.step();
    stop();
    // The 1 was lost, the 2 waited for the 3.
    EXPECT_EQ(rows(), (Rows{{3.0, 2.0}}));
}

TEST_F(RecordRowsTest, UnconnectedDataPinBlocksEveryRow) {
    makePins({{"a", "INT16"}, {"b", "INT16"}});
    start();
    record({1.0});
    record({2.0});
    stop();
    EXPECT_THAT(rows(), IsEmpty());
}

TEST_F(RecordRowsTest, EmptyMatrixDropsTheRow) {
    makePins({{"a", "INT16"}, {"b", "INT16"}});
    start();
    rec.push("input#1", Eigen::MatrixXd(0, 3));
    rec.push("input#2", column({2.0}));
    rec.step();
    rec.push("input#1", column({1.0}));
    rec.step();
    stop();
    EXPECT_EQ(rows(), (Rows{{1.0, 2.0}}));
}

TEST_F(RecordRowsTest, RowOfAnotherSizeIsToldAtEveryCallAndNotWritten) {
    makePins({{"a,b,c", "DOUBLE"}});
    start();
    testing::internal::CaptureStdout();
    for (int i = 0; i < 2; ++i) {
        rec.push("input#1", matrix({{1.0, 2.0}, {3.0, 4.0}}));
        rec.step();
    }
    record({1.0, 2.0});
    record({5.0, 6.0, 7.0});
    EXPECT_EQ(testing::internal::GetCapturedStdout(),
              "SensorFileError : check col number.\nSensorFileError : check col number.\n"
              "SensorFileError : check col number.\n");
    EXPECT_TRUE(isRecording());
    stop();
    EXPECT_EQ(rows(), (Rows{{5.0, 6.0, 7.0}}));
}

TEST_F(RecordRowsTest, NamesWithoutAnyNameMakeAHeaderWithoutColumnsAndNoRows) {
    makePins({{";", "DOUBLE"}});
    start();
    testing::internal::CaptureStdout();
    record({1.0});
    record({2.0});
    EXPECT_EQ(testing::internal::GetCapturedStdout(), "");
    stop();
    EXPECT_THAT(columnNames(), IsEmpty());
    EXPECT_EQ(rec.input("input#1").getWaitingCount(), 2U);
}

TEST_F(RecordRowsTest, ValueThatItsColumnCannotHoldInTextLeavesOutItsRowAlone) {
    makePins({{"a,b", "INT16"}});
    start();
    record({1.0, 2.0});
    record({3.0, 40000.0});
    record({std::numeric_limits<double>::quiet_NaN(), 5.0});
    record({-32768.0, 32767.5});
    stop();
    EXPECT_EQ(rows(), (Rows{{1.0, 2.0}, {-32768.0, 32767.0}}));
}

TEST_F(RecordRowsTest, RowsLeftOutAreToldOnceAtTheEndOfTheirRecording) {
    makePins({{"a", "INT16"}});
    const auto recordAndTell = [&](std::initializer_list<double> values) {
        testing::internal::CaptureStderr();
        start();
        for (const double value : values)
            record({value});
        stop();
        stop();
        return testing::internal::GetCapturedStderr();
    };
    EXPECT_EQ(recordAndTell({40000.0, 1.0, 50000.0}),
              "recorder: 2 row(s) left out of the recording, a value did not fit its column\n");
    EXPECT_EQ(recordAndTell({1.0, 2.0}), "");
    rec.set("Binary", true);
    EXPECT_EQ(recordAndTell({40000.0}), "");
}

TEST_F(RecordRowsTest, BinaryKeepsTheLowBitsInstead) {
    rec.set("Binary", true);
    makePins({{"a,b", "UINT8"}});
    start();
    record({300.7, -1.9});
    stop();
    EXPECT_EQ(rows(/*binary=*/true), (Rows{{44.0, 255.0}}));
}

TEST_F(RecordRowsTest, FirstElementOfTheTimeStampPinIsTheFirstColumn) {
    makePins({{"a", "INT16"}});
    rec.set("Save Timestamp", true);
    rec.set("TimeStampColName", "my time");
    start();
    rec.push("TimeStampPin", matrix({{0.25, 9.0}, {8.0, 7.0}}));
    record({1.0});
    stop();
    EXPECT_THAT(columnNames(), ElementsAre("my time", "a"));
    EXPECT_EQ(rows(), (Rows{{0.25, 1.0}}));
}

TEST_F(RecordRowsTest, TimeStampMayBeUnsigned) {
    makePins({{"a", "INT16"}});
    rec.set("Save Timestamp", true);
    rec.set("TimeStampColName", "COUNT");
    rec.choose("TimeStampColType", "UINT32");
    start();
    rec.push("TimeStampPin", column({4294967295.0}));
    record({1.0});
    stop();
    EXPECT_EQ(header().getColumn(0).getTypeName(), "uint32");
    EXPECT_EQ(rows(), (Rows{{4294967295.0, 1.0}}));
}

TEST_F(RecordRowsTest, WithoutATimeStampDataPinsAreLeftAlone) {
    makePins({{"a", "INT16"}});
    rec.set("Save Timestamp", true);
    rec.set("TimeStampColName", "T");
    start();
    record({1.0});
    EXPECT_EQ(rec.input("input#1").getWaitingCount(), 1U);
    rec.push("TimeStampPin", Eigen::MatrixXd());
    rec.step();
    EXPECT_EQ(rec.input("input#1").getWaitingCount(), 1U);
    rec.push("TimeStampPin", column({0.5}));
    rec.step();
    stop();
    EXPECT_EQ(rows(), (Rows{{0.5, 1.0}}));
}

TEST_F(RecordRowsTest, TakenSamplesLeaveTheirTimeInTheirPins) {
    makePins({{"a", "INT16"}});
    rec.set("Save Timestamp", true);
    rec.set("TimeStampColName", "T");
    start();
    rec.push("TimeStampPin", column({0.5}), 1.25);
    rec.push("input#1", column({0.5}), 2.5);
    rec.step();
    const auto lastTime = [&](const char* name) {
        return dynamic_cast<Filters::MatrixInputPin&>(rec.input(name)).getLastTime();
    };
    EXPECT_EQ(lastTime("TimeStampPin"), 1.25);
    EXPECT_EQ(lastTime("input#1"), 2.5);
}

TEST_F(RecordRowsTest, EveryTypeComesBackInBothEncodings) {
    const std::vector<std::string> types{"UCHAR", "CHAR",   "USHORT", "SHORT",  "UINT32",
                                         "INT32", "FLOAT",  "DOUBLE", "BOOL",   "UINT8",
                                         "INT8",  "UINT16", "INT16",  "UINT64", "INT64"};
    std::vector<std::pair<std::string, std::string>> pins;
    for (const std::string& type : types)
        pins.emplace_back("c" + type, type);
    makePins(pins);
    for (const bool binary : {false, true}) {
        rec.set("Binary", binary);
        start();
        for (std::size_t i = 1; i <= types.size(); ++i)
            rec.push("input#" + std::to_string(i), column({i == 9 ? 1.0 : 65.0}));
        rec.step();
        stop();
        ASSERT_EQ(header(binary).getColumnCount(), types.size());
        for (std::size_t i = 0; i < types.size(); ++i) {
            EXPECT_EQ(header(binary).getColumn(i).getTypeCode(), static_cast<int>(i) + 2);
            EXPECT_EQ(rows(binary).at(0).at(i), i == 8 ? 1.0 : 65.0) << types[i];
        }
    }
}
