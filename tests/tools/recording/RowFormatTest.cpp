#include "sensorfile/ColumnType.hpp"
#include "tests/tools/ToolFixture.hpp"
#include "tools/recording/RowFormat.hpp"
#include "tools/recording/RowReader.hpp"

#include <numeric>

namespace SensorFileTool {
namespace {

using namespace SensorFile;

class RowFormatTest : public ToolTest {
 protected:
    /// All rows; all columns if none are given.
    static std::string format(RowFormat form, Recording& recording,
                              std::vector<std::size_t> columns = {}) {
        if (columns.empty()) {
            columns.resize(recording.getConfig().getColumnCount());
            std::iota(columns.begin(), columns.end(), std::size_t{0});
        }
        RowText lines(form, recording.getConfig(), columns);
        std::string text;
        lines.appendHeader(text);
        for (RowReader rows(recording); rows.next();)
            lines.appendRow(text, rows.row());
        return text;
    }
    std::string header(RowFormat form, const std::vector<std::string>& names) {
        ColumnList columns;
        for (const std::string& name : names)
            columns.emplace_back(name, kUInt8);
        return format(form, open(configOf(columns), true, ""));
    }
};

TEST_F(RowFormatTest, CsvHasCommasBetweenFieldsAndALineOfNames) {
    EXPECT_EQ(format(RowFormat::kCsv, openText({kInt16, kDouble}, "-12\t0.005\t\n7\tnan\t\n")),
              "a,b\n-12,0.005\n7,nan\n");
}

TEST_F(RowFormatTest, TsvHasTabsBetweenFields) {
    EXPECT_EQ(format(RowFormat::kTsv, openText({kInt16, kDouble}, "-12\t0.005\t\n7\t-inf\t\n")),
              "a\tb\n-12\t0.005\n7\t-inf\n");
}

TEST_F(RowFormatTest, JsonLinesAreObjectsWithoutAHeader) {
    EXPECT_EQ(format(RowFormat::kJsonLines, openText({kInt16, kDouble}, "-12\t0.005\t\n7\t1\t\n")),
              "{\"a\":-12,\"b\":0.005}\n{\"a\":7,\"b\":1}\n");
}

TEST_F(RowFormatTest, JsonHoldsAsTextWhatItsNumbersCannot) {
    EXPECT_EQ(format(RowFormat::kJsonLines, openText({kDouble, kUInt64},
                                                     "nan\t9007199254740993\t\n"
                                                     "-inf\t9007199254740992\t\n")),
              "{\"a\":\"nan\",\"b\":\"9007199254740993\"}\n"
              "{\"a\":\"-inf\",\"b\":9007199254740992}\n");
}

TEST_F(RowFormatTest, ColumnsStandInTheOrderAskedFor) {
    Recording& recording = openBinary({kUInt8, kUInt8, kUInt8}, "010203");
    EXPECT_EQ(format(RowFormat::kCsv, recording, {2, 0}), "c,a\n3,1\n");
}

TEST_F(RowFormatTest, NamesWithSeparatorsQuotesOrLineEndsAreQuoted) {
    EXPECT_EQ(header(RowFormat::kCsv, {"a,b", "say \"x\"", "two\nlines", "c\rr", "t\tt", "a b"}),
              "\"a,b\",\"say \"\"x\"\"\",\"two\nlines\",\"c\rr\",t\tt,a b\n");
    EXPECT_EQ(header(RowFormat::kTsv, {"a,b", "say \"x\"", "t\tt"}),
              "a,b\t\"say \"\"x\"\"\"\t\"t\tt\"\n");
}

TEST_F(RowFormatTest, NamesAreJsonStrings) {
    EXPECT_EQ(format(RowFormat::kJsonLines, open(configOf({{"say \"x\"\n", kUInt8},
                                                           {"Gr\xc3\xb6\xc3\x9f"
                                                            "e",
                                                            kUInt8},
                                                           {"\xff", kUInt8}}),
                                                 true, std::string("\1\2\3"))),
              "{\"say \\\"x\\\"\\n\":1,\"Gr\xc3\xb6\xc3\x9f"
              "e\":2,\"\xef\xbf\xbd\":3}\n");
}

TEST_F(RowFormatTest, WithoutColumnsNothingIsWritten) {
    for (const RowFormat form : {RowFormat::kCsv, RowFormat::kTsv, RowFormat::kJsonLines})
        EXPECT_EQ(header(form, {}), "");
}

}  // namespace
}  // namespace SensorFileTool
