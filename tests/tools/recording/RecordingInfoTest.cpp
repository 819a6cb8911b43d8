#include "sensorfile/ColumnType.hpp"
#include "tests/tools/ToolFixture.hpp"
#include "tools/recording/RecordingInfo.hpp"

#include <Poco/Exception.h>

namespace SensorFileTool {
namespace {

using namespace SensorFile;

class RecordingInfoTest : public ToolTest {
 protected:
    static void expectCount(Recording& recording, std::uint64_t rows, std::int64_t restSize,
                            std::uint64_t restValues) {
        const RowCount count = countRows(recording);
        EXPECT_EQ(count.rows, rows);
        EXPECT_EQ(count.rest.size, restSize);
        EXPECT_EQ(count.rest.valueCount, restValues);
        if (restSize > 0) {
            EXPECT_EQ(count.rest.offset, recording.getSize() - restSize);
        }
    }
    static std::vector<MeasuredRate> rates(Recording& recording) {
        return measureRates(recording.getConfig(), countRows(recording));
    }
};

TEST_F(RecordingInfoTest, WholeRowsAreCounted) {
    expectCount(openText({kInt16, kDouble}, "1\t2\t\n3\t4\t\n5\t6\t\n"), 3, 0, 0);
    expectCount(openBinary({kInt16, kUInt8}, "000102 000304 000506"), 3, 0, 0);
}

TEST_F(RecordingInfoTest, ABinaryFileIsCutAtEveryByteOfItsLastRow) {
    const std::vector<int> types = {kInt16, kUInt8, kDouble, kUInt8};
    const std::string row(12, '\1');
    const std::size_t values[] = {0, 0, 1, 2, 2, 2, 2, 2, 2, 2, 2, 3};
    for (std::size_t size = 0; size < row.size(); ++size) {
        SCOPED_TRACE(size);
        expectCount(open(configOfTypes(types), true, row + row + row.substr(0, size)), 2,
                    static_cast<std::int64_t>(size), values[size]);
        expectCount(open(configOfTypes(types), true, row.substr(0, size)), 0,
                    static_cast<std::int64_t>(size), values[size]);
    }
}

// A value counts with the tab behind it; the line end alone is missed by nobody.
TEST_F(RecordingInfoTest, ATextFileIsCutAtEveryByteOfItsLastRow) {
    const std::string whole = "1\t2\t3\t\n";
    const std::string row = "12\t-3\t4.5\t\n";
    const std::size_t values[] = {0, 0, 0, 1, 1, 1, 2, 2, 2, 2};
    for (const int last : {kDouble, kFloat})
        for (const int first : {kInt16, kUInt64, kUInt8}) {
            const std::vector<int> types = {first, kInt64, last};
            for (std::size_t size = 0; size < std::size(values); ++size) {
                SCOPED_TRACE(size);
                expectCount(openText(types, whole + whole + row.substr(0, size)), 2,
                            static_cast<std::int64_t>(size), values[size]);
                expectCount(openText(types, row.substr(0, size)), 0,
                            static_cast<std::int64_t>(size), values[size]);
            }
            expectCount(openText(types, whole + row.substr(0, row.size() - 1)), 2, 0, 0);
            expectCount(openText(types, whole + row), 2, 0, 0);
        }
}

TEST_F(RecordingInfoTest, CharactersOfTextAreWholeByThemselves) {
    expectCount(openText({kInt16, kUChar}, "1\ta"), 1, 0, 0);
    expectCount(openText({kUChar, kInt16}, "a\t1\t\nb"), 1, 1, 1);
    expectCount(openText({kUChar, kInt16}, "a\t1\t\nb\t"), 1, 2, 1);
}

TEST_F(RecordingInfoTest, ValuesOfACutRowMayStandOnSeveralLines) {
    expectCount(openText({kInt16, kInt16, kInt16}, "1\t2\t3\t\n4\t\n5\t\n"), 1, 6, 2);
}

TEST_F(RecordingInfoTest, TextThatIsNoNumberEndsTheRows) {
    expectCount(openText({kInt16, kInt16}, "1\t2\t\n3\tx\t\n5\t6\t\n"), 1, 10, 1);
    expectCount(openText({kInt16, kInt16}, "1\t2\t\n70000\t2\t\n"), 1, 9, 0);
    expectCount(openText({kInt16, kInt16}, "a,b\t2\t\n"), 0, 7, 0);
}

TEST_F(RecordingInfoTest, BlankLinesAtTheEndOfATextFileAreNoRest) {
    for (const std::string end : {"\n", "\n\n\n", "\r\n", " \t \n"})
        expectCount(openText({kInt16}, "1\t\n2\t\n" + end), 2, 0, 0);
    expectCount(openText({kInt16}, "\n\n"), 0, 0, 0);
    expectCount(openText({kInt16, kInt16}, "\n\n1\t"), 0, 2, 1);
}

TEST_F(RecordingInfoTest, FilesWithoutRowsHaveNone) {
    expectCount(openText({kInt16}, ""), 0, 0, 0);
    expectCount(openBinary({kInt16}, ""), 0, 0, 0);
}

TEST_F(RecordingInfoTest, WithoutColumnsAllBytesAreRest) {
    expectCount(openText({}, ""), 0, 0, 0);
    expectCount(openBinary({}, ""), 0, 0, 0);
    expectCount(openBinary({}, "0102"), 0, 2, 0);
    expectCount(openText({}, "1\t\n"), 0, 3, 0);
}

TEST_F(RecordingInfoTest, CalibrationFilesHaveNoRowsAndTheRestBeginsBehindTheSection) {
    auto config = configOf({});
    config.setCalibOnly(true);
    for (const bool binary : {true, false}) {
        const std::string section = binary ? calibBytes(config) : calibText(config);
        file.setContent(section);
        EXPECT_TRUE(reopen().getConfig().isCalibOnly());
        expectCount(reopen(), 0, 0, 0);
        file.setContent(section + std::string(100, 'x'));
        expectCount(reopen(), 0, 100, 0);
        file.setContent(section + "x");
        expectCount(reopen(), 0, 1, 0);
    }
}

TEST_F(RecordingInfoTest, LinesBehindTheSectionOfATextFileAreNoRest) {
    auto config = configOf({});
    config.setCalibOnly(true);
    file.setContent(calibText(config) + "\n\n");
    expectCount(reopen(), 0, 0, 0);
}

TEST_F(RecordingInfoTest, TheRecordingTellsItsSizes) {
    const Recording& recording = openBinary({kInt16, kDouble}, "0001");
    EXPECT_TRUE(recording.isBinary());
    EXPECT_EQ(recording.getRowSize(), 10U);
    EXPECT_EQ(recording.getSize(), recording.getDataStart() + 2);
    EXPECT_EQ(recording.getName(), file.path());
}

TEST_F(RecordingInfoTest, TheEncodingCanBeToldInstead) {
    openText({kInt16}, "1\t\n");
    EXPECT_THROW(Recording(InputFile(file.path()), true), Poco::DataException);
    EXPECT_FALSE(Recording(InputFile(file.path()), false).isBinary());
}

TEST_F(RecordingInfoTest, ARestIsToldInASentence) {
    EXPECT_EQ((Rest{.offset = 120, .size = 7, .valueCount = 2}).describe(),
              "7 byte(s) from offset 120 on are no whole row (2 whole value(s))");
}

TEST_F(RecordingInfoTest, RatesAreMeasuredBetweenTheFirstAndTheLastRow) {
    const auto config = configOf({{"COUNT", kInt16}, {"TIME", kDouble}});
    const std::string text = "1\t0.5\t\n2\t7\t\n3\t1\t\n";
    const std::string binary =
        bytes("0001 3fe0000000000000 0002 401c000000000000 0003 3ff0000000000000");
    for (const bool isBinary : {true, false}) {
        const auto found = rates(open(config, isBinary, isBinary ? binary : text));
        ASSERT_EQ(found.size(), 2U);
        EXPECT_EQ(found[0].column, "TIME");
        EXPECT_FALSE(found[0].isByCounter);
        EXPECT_EQ(found[0].hertz, 4.0);
        EXPECT_EQ(found[0].firstStamp, 0.5);
        EXPECT_EQ(found[0].lastStamp, 1.0);
        EXPECT_EQ(found[1].column, "COUNT");
    }
}

TEST_F(RecordingInfoTest, CountersTellOfMissingRows) {
    auto config = configOf({{"frame", kUInt8}});
    config.setSampleFrequency(100.0);
    const auto rateOf = [&](const std::string& samples) {
        const auto found = rates(open(config, false, samples));
        EXPECT_EQ(found.size(), 1U) << samples;
        return found.empty() ? MeasuredRate{} : found[0];
    };
    const MeasuredRate whole = rateOf("254\t\n255\t\n0\t\n1\t\n");
    EXPECT_TRUE(whole.isByCounter);
    EXPECT_EQ(whole.missing, 0U);
    EXPECT_EQ(whole.hertz, 100.0);
    const MeasuredRate gap = rateOf("254\t\n255\t\n0\t\n4\t\n");
    EXPECT_EQ(gap.missing, 3U);
    EXPECT_EQ(gap.hertz, 50.0);
}

TEST_F(RecordingInfoTest, CountersThatRepeatOrGoBackTellNoRate) {
    const auto config = configOf({{"COUNT", kUInt16}});
    for (const std::string samples : {"1\t\n1\t\n", "2\t\n1\t\n", "1\t\n2\t\n2\t\n", "1\t\n"})
        EXPECT_TRUE(rates(open(config, false, samples)).empty()) << samples;
}

TEST_F(RecordingInfoTest, ACutRowDoesNotCountForTheRate) {
    const auto config = configOf({{"Time", kDouble}, {"N", kUInt64}});
    for (const std::string rest : {"", "9", "9\t", "9\t7", "x"}) {
        const auto found = rates(open(config, false, "0\t1\t\n1\t2\t\n" + rest));
        ASSERT_EQ(found.size(), 1U) << rest;
        EXPECT_EQ(found[0].hertz, 1.0);
    }
}

TEST_F(RecordingInfoTest, AllTimeColumnsAreMeasured) {
    const auto config =
        configOf({{"timestamp", kFloat}, {"t", kDouble}, {"TIME", kInt32}, {"TIMER", kDouble}});
    const auto found = rates(open(config, false, "0\t0\t0\t0\t\n2\t4\t6\t8\t\n"));
    ASSERT_EQ(found.size(), 3U);
    EXPECT_EQ(found[0].column, "timestamp");
    EXPECT_EQ(found[0].hertz, 0.5);
    EXPECT_EQ(found[1].column, "t");
    EXPECT_EQ(found[1].hertz, 0.25);
    EXPECT_EQ(found[2].column, "TIME");
    EXPECT_DOUBLE_EQ(found[2].hertz, 1000.0 / 6.0);  // milliseconds come nearest to 200 Hz
}

TEST_F(RecordingInfoTest, ColumnsOfTheSameNameAreMeasuredEach) {
    const auto config = configOf({{"T", kDouble}, {"T", kDouble}});
    const auto found = rates(open(config, false, "0\t0\t\n2\t4\t\n"));
    ASSERT_EQ(found.size(), 2U);
    EXPECT_EQ(found[0].hertz, 0.5);
    EXPECT_EQ(found[1].hertz, 0.25);
}

TEST_F(RecordingInfoTest, WithoutGrowingStampsThereIsNoRate) {
    const auto config = configOf({{"TIME", kDouble}});
    for (const std::string samples :
         {"", "1\t\n", "1\t\n1\t\n", "2\t\n1\t\n", "nan\t\n1\t\n", "1\t\ninf\t\n", "-inf\t\n1\t\n"})
        EXPECT_TRUE(rates(open(config, false, samples)).empty()) << samples;
}

}  // namespace
}  // namespace SensorFileTool
